#pragma once

#include "Yr/YrException.h"

// Every exception class has the same members: the four constructors of the
// root, copy and move, its name and a cloning copy. Only the most derived
// class builds the virtual root, so the constructors go straight to it.
#define YR_DECLARE_EXCEPTION(Name, Base)                                                     \
    class Name : public virtual Base {                                                       \
    public:                                                                                  \
        Name(const ::Yr::UniString& message, const char* sourceFile, ::Yr::UInt32 line,      \
             const ::Yr::YrException& cause, int errorCode);                                 \
        Name(const ::Yr::UniString& message, const char* sourceFile, ::Yr::UInt32 line,      \
             int errorCode);                                                                 \
        Name(const char* message, const char* sourceFile, ::Yr::UInt32 line,                 \
             const ::Yr::YrException& cause, int errorCode);                                 \
        Name(const char* message, const char* sourceFile, ::Yr::UInt32 line, int errorCode); \
        Name(const Name& other);                                                             \
        Name(Name&& other) noexcept;                                                         \
        ~Name() override;                                                                    \
        const char* GetName() const override;                                                \
        ::Yr::YrException* Clone() const override;                                           \
                                                                                             \
    protected:                                                                               \
        Name() = default;                                                                    \
    }

#define YR_DEFINE_EXCEPTION(Name)                                                             \
    Name::Name(const ::Yr::UniString& message, const char* sourceFile, ::Yr::UInt32 line,     \
               const ::Yr::YrException& cause, int errorCode)                                 \
        : ::Yr::YrException(message, sourceFile, line, cause, errorCode) {}                   \
    Name::Name(const ::Yr::UniString& message, const char* sourceFile, ::Yr::UInt32 line,     \
               int errorCode)                                                                 \
        : ::Yr::YrException(message, sourceFile, line, errorCode) {}                          \
    Name::Name(const char* message, const char* sourceFile, ::Yr::UInt32 line,                \
               const ::Yr::YrException& cause, int errorCode)                                 \
        : ::Yr::YrException(message, sourceFile, line, cause, errorCode) {}                   \
    Name::Name(const char* message, const char* sourceFile, ::Yr::UInt32 line, int errorCode) \
        : ::Yr::YrException(message, sourceFile, line, errorCode) {}                          \
    Name::Name(const Name& other) = default;                                                  \
    Name::Name(Name&& other) noexcept = default;                                              \
    Name::~Name() = default;                                                                  \
    const char* Name::GetName() const {                                                       \
        return #Name;                                                                         \
    }                                                                                         \
    ::Yr::YrException* Name::Clone() const {                                                  \
        return new Name(*this);                                                               \
    }
