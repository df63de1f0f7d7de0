#include "Common/ExceptionPrinting.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "Common/IO/ArchiveException.h"
#include "Common/IO/FileNotFoundException.h"
#include "Yr/Debug.h"
#include "Yr/Exceptions.h"

namespace {

using Morvelan::Common::DebugPrintEx;
using Morvelan::Common::ToString;
namespace MIO = Morvelan::Common::IO;

// Collects the debug output of its lifetime, then puts the previous sink back.
class CapturingSink final : public Yr::DebugSink {
public:
    CapturingSink() : m_previous(Yr::SetDebugSink(this)) {}
    ~CapturingSink() override { Yr::SetDebugSink(m_previous); }
    void Write(std::string_view text) override { m_text.append(text); }
    const std::string& GetText() const { return m_text; }

private:
    Yr::DebugSink* m_previous;
    std::string m_text;
};

TEST(ExceptionPrintingTest, SingleExceptionRendersOneBlock) {
    const struct {
        const char* label;
        const char* message;
        const char* file;
        Yr::UInt32 line;
        const char* expected;
    } kCases[] = {
        {"message", "Archive is truncated.", "Common/IO/ArchiveFile", 412,
         "\nException: ArchiveException: Archive is truncated.\n\tat Common/IO/ArchiveFile(412)"},
        {"empty message", "", "Common/IO/ArchiveFile", 7,
         "\nException: ArchiveException\n\tat Common/IO/ArchiveFile(7)"},
        {"largest line", "x", "Common/IO/A", 4294967295u,
         "\nException: ArchiveException: x\n\tat Common/IO/A(4294967295)"},
        {"no source unit", "x", nullptr, 0, "\nException: ArchiveException: x\n\tat (0)"},
        {"non-ASCII message", "Eintrag 'Größe' fehlt.", "Common/IO/A", 3,
         "\nException: ArchiveException: Eintrag 'Größe' fehlt.\n\tat Common/IO/A(3)"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.label);
        const MIO::ArchiveException exception(c.message, c.file, c.line, Yr::kIOErrorCode);
        EXPECT_EQ(ToString(exception).ToUtf8(), std::string(c.expected));
    }
}

TEST(ExceptionPrintingTest, ChainRendersOutermostFirst) {
    const Yr::IOException root("No such file.", "InputOutput/Posix/PosixFileSystem", 88,
                               Yr::kIOErrorCode);
    const MIO::FileNotFoundException middle("", "Common/IO/IOUtilities", 120, root,
                                            Yr::kIOErrorCode);
    const MIO::ArchiveException outer("Failed to open archive: 'a.mva'.", "Common/IO/ArchiveFile",
                                      31, middle, Yr::kIOErrorCode);

    EXPECT_EQ(ToString(outer).ToUtf8(),
              "\nException: ArchiveException: Failed to open archive: 'a.mva'."
              "\n\tat Common/IO/ArchiveFile(31)"
              "\nCaused by: FileNotFoundException"
              "\n\tat Common/IO/IOUtilities(120)"
              "\nCaused by: IOException: No such file."
              "\n\tat InputOutput/Posix/PosixFileSystem(88)");
}

TEST(ExceptionPrintingTest, DebugPrintExWritesTheTextAndOneLineBreak) {
    const Yr::IOException root("Größe überschritten.", "Yr/Inner", 5, Yr::kIOErrorCode);
    const MIO::ArchiveException outer("Failed to write entry.", "Common/IO/ArchiveWriter", 9, root,
                                      Yr::kIOErrorCode);
    CapturingSink sink;
    DebugPrintEx(outer);

    EXPECT_EQ(sink.GetText(),
              "\nException: ArchiveException: Failed to write entry."
              "\n\tat Common/IO/ArchiveWriter(9)"
              "\nCaused by: IOException: Größe überschritten."
              "\n\tat Yr/Inner(5)\n");
}

}  // namespace
