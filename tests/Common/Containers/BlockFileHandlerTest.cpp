#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "Common/Containers/BlockFileException.h"
#include "Common/Containers/BlockFileHandler.h"
#include "InputOutput/FileSystemWrapper.h"
#include "InputOutput/ScopedFileSystem.h"
#include "tests/support/ScopedTempFolder.h"
#include "tests/support/TestFiles.h"

namespace {

using Morvelan::Common::Containers::BlockFileException;
using Morvelan::Common::Containers::BlockFileHandler;
using Morvelan::Testing::At;
using Morvelan::Testing::ScopedTempFolder;

// Fails the chosen positioned and flushing calls, and counts truncations.
class FaultyFileSystem final : public ::IO::FileSystemWrapper {
public:
    using FileSystemWrapper::FileSystemWrapper;

    ::IO::Status ReadAt(int descriptor, Yr::UInt64 offset, void* buffer, std::size_t size,
                        std::size_t& count) override {
        if (failReads) return ::IO::kSystemErrorBase | 5;
        return FileSystemWrapper::ReadAt(descriptor, offset, buffer, size, count);
    }
    ::IO::Status WriteAt(int descriptor, Yr::UInt64 offset, const void* buffer,
                         std::size_t size) override {
        if (failWrites) return ::IO::kDiskFull;
        return FileSystemWrapper::WriteAt(descriptor, offset, buffer, size);
    }
    ::IO::Status FlushDescriptor(int descriptor) override {
        if (failFlushes) return ::IO::kSystemErrorBase | 5;
        return FileSystemWrapper::FlushDescriptor(descriptor);
    }
    ::IO::Status Truncate(int descriptor, Yr::UInt64 size) override {
        ++truncations;
        return FileSystemWrapper::Truncate(descriptor, size);
    }

    bool failReads = false;
    bool failWrites = false;
    bool failFlushes = false;
    int truncations = 0;
};

class BlockFileHandlerTest : public testing::Test {
protected:
    std::unique_ptr<BlockFileHandler> Open() {
        return std::unique_ptr<BlockFileHandler>(BlockFileHandler::Create(At(m_path)));
    }

    ScopedTempFolder m_folder;
    std::string m_path = m_folder.PathOf("blocks");
    FaultyFileSystem m_fileSystem{::IO::FileSystem::Get()};
    ::IO::ScopedFileSystem m_installed{m_fileSystem};
};

void ExpectMessageStart(const std::function<void()>& action, const std::string& start) {
    try {
        action();
        ADD_FAILURE() << "no exception, expected: " << start;
    } catch (const BlockFileException& e) {
        EXPECT_EQ(std::string(e.what()).substr(0, start.size()), start) << e.what();
        EXPECT_EQ(e.GetErrorCode(), -7003);
    }
}

TEST_F(BlockFileHandlerTest, CreatesWritesReadsAndKeepsItsSize) {
    const auto handler = Open();
    EXPECT_EQ(handler->GetSize(), 0u);
    const std::string block(4096, 'b');
    handler->Write(8192, block.data(), 4096);
    EXPECT_EQ(handler->GetSize(), 12288u);
    std::string read(4096, '\0');
    handler->Read(8192, read.data(), 4096);
    EXPECT_EQ(read, block);
    handler->SetSize(12288);
    EXPECT_EQ(m_fileSystem.truncations, 0);
    handler->SetSize(4096);
    EXPECT_EQ(handler->GetSize(), 4096u);
    ExpectMessageStart([&] { handler->Read(0, read.data(), 4097); },
                       "Failed read block from block file");
    handler->Flush();
    handler->Close();
    handler->Close();
    EXPECT_TRUE(handler->IsClosed());
    EXPECT_EQ(Open()->GetSize(), 4096u);
}

TEST_F(BlockFileHandlerTest, ASecondOpenerIsRefused) {
    const auto first = Open();
    ExpectMessageStart([&] { Open(); },
                       "Failed to create block file handler: failed to open block file");
    first->Close();
    EXPECT_FALSE(Open()->IsClosed());
}

TEST_F(BlockFileHandlerTest, SystemFailuresBecomeBlockFileExceptions) {
    const auto handler = Open();
    char byte = 'x';
    handler->Write(0, &byte, 1);
    const struct {
        bool FaultyFileSystem::*fault;
        std::function<void()> action;
        const char* message;
    } cases[] = {
        {&FaultyFileSystem::failWrites, [&] { handler->Write(0, &byte, 1); },
         "Failed to write block to block file. Disk is full."},
        {&FaultyFileSystem::failReads, [&] { handler->Read(0, &byte, 1); },
         "Failed read block from block file. Input/output error (system error 5)."},
        {&FaultyFileSystem::failFlushes, [&] { handler->Flush(); },
         "Failed to flush block file. Input/output error (system error 5)."},
    };
    for (const auto& test : cases) {
        m_fileSystem.*test.fault = true;
        ExpectMessageStart(test.action, test.message);
        m_fileSystem.*test.fault = false;
    }
    EXPECT_EQ(handler->GetSize(), 1u);
}

}  // namespace
