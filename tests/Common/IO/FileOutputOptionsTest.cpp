#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "Common/IO/FileOutputOptions.h"

namespace {

using namespace Morvelan::Common::IO;

struct OptionText {
    Yr::UInt32 value;
    const char* text;
};

template <class Option>
void ExpectTexts(const std::vector<OptionText>& table) {
    for (const OptionText& row : table) {
        const Option option(static_cast<typename Option::Value>(row.value));
        EXPECT_EQ(option.ToString().ToPrintf(), std::string(row.text)) << row.value;
        EXPECT_EQ(static_cast<int>(option), static_cast<int>(row.value));
    }
}

TEST(FileOutputOptionsTest, OptionValuesPrintTheirTextsAndNothingOutsideTheTable) {
    ExpectTexts<FileShare>(
        {{0, "none"}, {1, "read"}, {2, "read-write"}, {3, "write"}, {4, ""}, {0xFFFFFFFF, ""}});
    ExpectTexts<FileWriteMode>({{0, "truncate"}, {1, "append"}, {2, ""}});
    ExpectTexts<FileCreationMode>({{0, "creation-always"}, {1, "creation-new"}, {2, ""}});
}

TEST(FileOutputOptionsTest, OptionValuesCompareWithInstancesAndEnumerators) {
    const FileShare share = FileShare::Write;
    EXPECT_TRUE(share == FileShare::Write);
    EXPECT_TRUE(share != FileShare::ReadWrite);
    EXPECT_TRUE(share == FileShare(FileShare::Write));
    EXPECT_TRUE(share != FileShare());
    EXPECT_TRUE(FileWriteMode(FileWriteMode::Append) != FileWriteMode());
    EXPECT_TRUE(FileCreationMode(FileCreationMode::CreationNew) != FileCreationMode());
}

TEST(FileOutputOptionsTest, RetryOptionsDefaultsAndText) {
    EXPECT_EQ(RetryOptions(), RetryOptions(0, 0));
    const RetryOptions& shared = RetryOptions::GetDefault();
    EXPECT_EQ(shared.GetRetryTimeout(), 250u);
    EXPECT_EQ(shared.GetRetryCount(), 5u);
    EXPECT_EQ(&shared, &RetryOptions::GetDefault());
    EXPECT_TRUE(shared.IsValid());
    EXPECT_STREQ(shared.ToString().ToPrintf(), "RetryOptions (retry-timeout=250, retry-count=5)");
}

TEST(FileOutputOptionsTest, RetryOptionsSettersChainAndEqualityWeighsBothFields) {
    RetryOptions options;
    options.SetRetryTimeout(7).SetRetryCount(3);
    EXPECT_EQ(options, RetryOptions(7, 3));
    EXPECT_NE(options, RetryOptions(7, 4));
    EXPECT_NE(options, RetryOptions(8, 3));
    EXPECT_NE(options, RetryOptions(3, 7));
}

TEST(FileOutputOptionsTest, DefaultConstructedIsAllZerosSharedDefaultRetries) {
    const FileOutputOptions zeros;
    EXPECT_EQ(zeros.GetAccessDeniedRetryOptions(), RetryOptions(0, 0));
    EXPECT_TRUE(zeros.GetCreationMode() == FileCreationMode::CreationAlways);
    EXPECT_TRUE(zeros.GetWriteMode() == FileWriteMode::Truncate);
    EXPECT_TRUE(zeros.GetShare() == FileShare::None);

    const FileOutputOptions& shared = FileOutputOptions::GetDefault();
    EXPECT_EQ(&shared, &FileOutputOptions::GetDefault());
    EXPECT_EQ(shared, FileOutputOptions().SetAccessDeniedRetryOptions(RetryOptions(250, 5)));
    EXPECT_STREQ(shared.ToString().ToPrintf(),
                 "FileOutputOptions (access-denied-retry-option=RetryOptions (retry-timeout=250, "
                 "retry-count=5), creation-mode=creation-always, write-mode=truncate, share=none)");
}

TEST(FileOutputOptionsTest, SharedDefaultsAreMadeOnceAcrossThreads) {
    std::vector<const FileOutputOptions*> seen(4, nullptr);
    std::vector<std::thread> threads;
    for (auto& slot : seen) {
        threads.emplace_back([&slot] { slot = &FileOutputOptions::GetDefault(); });
    }
    for (auto& thread : threads) thread.join();
    for (const auto* instance : seen) EXPECT_EQ(instance, &FileOutputOptions::GetDefault());
}

TEST(FileOutputOptionsTest, OnlyCreationNewWithAppendIsInvalid) {
    const struct {
        FileCreationMode creation;
        FileWriteMode write;
        bool valid;
    } table[] = {
        {FileCreationMode::CreationAlways, FileWriteMode::Truncate, true},
        {FileCreationMode::CreationAlways, FileWriteMode::Append, true},
        {FileCreationMode::CreationNew, FileWriteMode::Truncate, true},
        {FileCreationMode::CreationNew, FileWriteMode::Append, false},
    };
    for (const auto& row : table) {
        const FileOutputOptions options =
            FileOutputOptions().SetCreationMode(row.creation).SetWriteMode(row.write);
        EXPECT_EQ(options.IsValid(), row.valid) << options.ToString().ToPrintf();
    }
}

TEST(FileOutputOptionsTest, SettersChainAndEveryFieldCountsForEquality) {
    const FileOutputOptions all = FileOutputOptions()
                                      .SetAccessDeniedRetryOptions(RetryOptions(10, 2))
                                      .SetCreationMode(FileCreationMode::CreationNew)
                                      .SetWriteMode(FileWriteMode::Truncate)
                                      .SetShare(FileShare::ReadWrite);
    EXPECT_STREQ(all.ToString().ToPrintf(),
                 "FileOutputOptions (access-denied-retry-option=RetryOptions (retry-timeout=10, "
                 "retry-count=2), creation-mode=creation-new, write-mode=truncate, "
                 "share=read-write)");
    const std::function<void(FileOutputOptions&)> changes[] = {
        [](FileOutputOptions& o) { o.GetAccessDeniedRetryOptions().SetRetryTimeout(11); },
        [](FileOutputOptions& o) { o.GetAccessDeniedRetryOptions().SetRetryCount(3); },
        [](FileOutputOptions& o) { o.GetCreationMode() = FileCreationMode::CreationAlways; },
        [](FileOutputOptions& o) { o.GetWriteMode() = FileWriteMode::Append; },
        [](FileOutputOptions& o) { o.GetShare() = FileShare::Write; },
    };
    for (const auto& change : changes) {
        FileOutputOptions changed = all;
        EXPECT_EQ(changed, all);
        change(changed);
        EXPECT_NE(changed, all) << changed.ToString().ToPrintf();
    }
}

}  // namespace
