#include <gtest/gtest.h>

#include <memory>
#include <utility>

#include "Common/IO/NullIBinaryChannelFactory.h"
#include "Common/IO/NullOBinaryChannelFactory.h"

namespace {

using namespace Morvelan::Common::IO;

TEST(NullChannelTest, FactoryChannelsEndAtOnceOrTakeAnything) {
    NullIBinaryChannelFactory inputFactory;
    const NullIBinaryChannelFactory inputCopy(inputFactory);
    NullOBinaryChannelFactory outputFactory;
    NullOBinaryChannelFactory outputMoved(std::move(outputFactory));
    const std::unique_ptr<Yr::IBinaryChannel> input(inputCopy.GetInputChannel());
    EXPECT_NE(input, std::unique_ptr<Yr::IBinaryChannel>(inputCopy.GetInputChannel()));
    char buffer[8] = {'u'};
    EXPECT_EQ(input->Read(buffer, sizeof buffer, Yr::kReadSome), 0u);
    input->Close();
    EXPECT_EQ(input->Read(buffer, sizeof buffer, Yr::kReadSome), 0u);
    EXPECT_EQ(input->GetAvailable(), 0u);
    EXPECT_EQ(buffer[0], 'u');
    const std::unique_ptr<Yr::OBinaryChannel> output(outputMoved.GetOutputChannel());
    output->Write(nullptr, 1000);
    output->Close();
    output->Write("abc", 3);
}

}  // namespace
