#include <gtest/gtest.h>

#include <memory>

#include "Common/IO/NullIBinaryChannelFactory.h"
#include "Common/IO/NullOBinaryChannelFactory.h"

namespace {

using namespace Morvelan::Common::IO;

TEST(NullChannelTest, InputEndsAtOnceOutputTakesAnything) {
    const std::unique_ptr<Yr::IBinaryChannel> input(NullIBinaryChannelFactory().GetInputChannel());
    char buffer[8] = {'u'};
    input->Close();
    EXPECT_EQ(input->Read(buffer, sizeof buffer, Yr::kReadSome), 0u);
    EXPECT_EQ(input->GetAvailable(), 0u);
    EXPECT_EQ(buffer[0], 'u');
    const std::unique_ptr<Yr::OBinaryChannel> output(
        NullOBinaryChannelFactory().GetOutputChannel());
    output->Write(nullptr, 1000);
    output->Close();
    output->Write("abc", 3);
}

}  // namespace
