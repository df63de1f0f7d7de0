#include "Common/ExceptionPrinting.h"

#include <string>

#include <gtest/gtest.h>

#include "tests/support/CapturedDebugOutput.h"

#include "Common/IO/ArchiveException.h"
#include "Common/IO/FileNotFoundException.h"
#include "Yr/Exceptions.h"

namespace {

using Morvelan::Common::DebugPrintEx;
using Morvelan::Common::ToString;
namespace MIO = Morvelan::Common::IO;

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
    const MIO::ArchiveException exception("Größe überschritten.", "Common/IO/A", 9,
                                          Yr::kIOErrorCode);
    Morvelan::Testing::CapturedDebugOutput output;
    DebugPrintEx(exception);
    EXPECT_EQ(output.GetText(), ToString(exception).ToUtf8() + "\n");
}

}  // namespace
