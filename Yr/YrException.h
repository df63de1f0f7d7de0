#pragma once

#include <exception>
#include <memory>

#include "Yr/ErrorCodes.h"
#include "Yr/Types.h"
#include "Yr/UniString.h"

namespace Yr {

// Root of every exception of the library. Holds the message, the source unit
// and line of the throw, an owned copy of the cause (if any) and an error code.
// Derives from std::exception too, so callers may catch failures generically;
// what() is the message in UTF-8.
class YrException : public std::exception {
public:
    YrException(const UniString& message, const char* sourceFile, UInt32 line,
                const YrException& cause, int errorCode);
    YrException(const UniString& message, const char* sourceFile, UInt32 line, int errorCode);
    YrException(const char* message, const char* sourceFile, UInt32 line, const YrException& cause,
                int errorCode);
    YrException(const char* message, const char* sourceFile, UInt32 line, int errorCode);
    YrException(const YrException& other);
    YrException(YrException&& other) noexcept;
    YrException& operator=(const YrException&) = delete;
    ~YrException() override;

    const UniString& GetMessage() const { return m_message; }
    const char* GetFileName() const { return m_fileName; }
    UInt32 GetLineNumber() const { return m_line; }
    // The cause, or null when there is none.
    const YrException* GetCause() const { return m_cause.get(); }
    int GetErrorCode() const { return m_errorCode; }

    virtual const char* GetName() const;
    // A heap copy made with the copy constructor; the caller owns it.
    virtual YrException* Clone() const;

    const char* what() const noexcept override { return m_message.ToPrintf(); }

protected:
    // For classes below a virtual base: only the most derived class builds the root.
    YrException() = default;

private:
    UniString m_message;
    const char* m_fileName = "";
    UInt32 m_line = 0;
    std::unique_ptr<YrException> m_cause;
    int m_errorCode = 0;
};

}  // namespace Yr
