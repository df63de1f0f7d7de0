#include "Yr/YrException.h"

#include "Yr/Exceptions.h"

namespace Yr {

YrException::YrException(const UniString& message, const char* sourceFile, UInt32 line,
                         const YrException& cause, int errorCode)
    : m_message(message),
      m_fileName(sourceFile ? sourceFile : ""),
      m_line(line),
      m_cause(cause.Clone()),
      m_errorCode(errorCode) {}

YrException::YrException(const UniString& message, const char* sourceFile, UInt32 line,
                         int errorCode)
    : m_message(message),
      m_fileName(sourceFile ? sourceFile : ""),
      m_line(line),
      m_errorCode(errorCode) {}

// Messages are fixed texts of our own; should one be ill-formed, keep the
// report rather than losing it to a conversion failure inside a throw.
YrException::YrException(const char* message, const char* sourceFile, UInt32 line,
                         const YrException& cause, int errorCode)
    : YrException(UniString::FromUtf8Replacing(message ? message : ""), sourceFile, line, cause,
                  errorCode) {}

YrException::YrException(const char* message, const char* sourceFile, UInt32 line, int errorCode)
    : YrException(UniString::FromUtf8Replacing(message ? message : ""), sourceFile, line,
                  errorCode) {}

YrException::YrException(const YrException& other)
    : std::exception(other),
      m_message(other.m_message),
      m_fileName(other.m_fileName),
      m_line(other.m_line),
      m_cause(other.m_cause ? other.m_cause->Clone() : nullptr),
      m_errorCode(other.m_errorCode) {}

YrException::YrException(YrException&& other) noexcept = default;

YrException::~YrException() = default;

const char* YrException::GetName() const {
    return "YrException";
}

YrException* YrException::Clone() const {
    return new YrException(*this);
}

YR_DEFINE_EXCEPTION(GeneralException)
YR_DEFINE_EXCEPTION(IOException)
YR_DEFINE_EXCEPTION(IllegalArgumentException)
YR_DEFINE_EXCEPTION(NullReferenceException)
YR_DEFINE_EXCEPTION(IllegalReferenceException)
YR_DEFINE_EXCEPTION(ConversionErrorException)
YR_DEFINE_EXCEPTION(SynchronizationException)
YR_DEFINE_EXCEPTION(InterruptedException)
YR_DEFINE_EXCEPTION(OutOfMemoryException)
YR_DEFINE_EXCEPTION(EndOfInputException)
YR_DEFINE_EXCEPTION(DataIntegrityException)
YR_DEFINE_EXCEPTION(InterruptedIOException)

}  // namespace Yr
