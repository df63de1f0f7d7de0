#include "Common/ExceptionPrinting.h"

#include <cstddef>
#include <string>

#include "Yr/Debug.h"
#include "Yr/YrException.h"

namespace Morvelan::Common {
namespace {

// Enough for a few levels of cause without growing the string while the
// caller may be short of memory.
constexpr std::size_t kInitialCapacity = 2048;

void AppendBlock(Yr::UniString& text, const char* heading, const Yr::YrException& exception) {
    text.Append(heading);
    text.Append(exception.GetName());
    if (!exception.GetMessage().IsEmpty()) {
        text.Append(": ");
        text.Append(exception.GetMessage());
    }
    // Through %s a stray byte in the source unit prints as U+FFFD instead of throwing.
    text.Append(Yr::UniString::Printf("\n\tat %s(%lu)", exception.GetFileName(),
                                      exception.GetLineNumber()));
}

}  // namespace

Yr::UniString ToString(const Yr::YrException& exception) {
    Yr::UniString text;
    text.SetCapacity(kInitialCapacity);
    AppendBlock(text, "\nException: ", exception);
    for (const Yr::YrException* cause = exception.GetCause(); cause != nullptr;
         cause = cause->GetCause())
        AppendBlock(text, "\nCaused by: ", *cause);
    return text;
}

void DebugPrintEx(const Yr::YrException& exception) {
    const std::string narrow = ToString(exception).ToCStr();
    Yr::DBPrintf("%s\n", narrow);
}

}  // namespace Morvelan::Common
