#include "cli/Base64Command.h"

#include <cstdio>
#include <memory>

#include "Yr/BufferedOBinaryChannel.h"
#include "Yr/YrException.h"
#include "cli/Base64Streams.h"
#include "cli/CommandSupport.h"
#include "cli/StandardOutputChannel.h"

namespace Morvelan::Tool {
namespace {

constexpr Yr::UInt32 kOutputBufferSize = 1 << 20;

void AddCommonOptions(CLI::App& subcommand, std::string& file, bool& urlSafe) {
    subcommand.add_option("FILE", file, "The file to read; none or - reads standard input");
    subcommand.add_flag("--url-safe", urlSafe,
                        "Use the URL- and file-name-safe alphabet (- and _), without padding");
}

}  // namespace

Base64Command::Base64Command(CLI::App& parent) {
    m_subcommand = parent.add_subcommand("base64", "Encode bytes as Base64 text, or decode it");
    m_subcommand->require_subcommand(1);
    m_encode = m_subcommand->add_subcommand("encode", "Write the Base64 text of the input");
    AddCommonOptions(*m_encode, m_file, m_urlSafe);
    m_encode->add_option("-w,--wrap", m_columns, "Break lines after COLS characters; 0: never")
        ->type_name("COLS");
    m_decode = m_subcommand->add_subcommand(
        "decode", "Write the bytes of the Base64 text in the input; line breaks are skipped");
    AddCommonOptions(*m_decode, m_file, m_urlSafe);
}

int Base64Command::Run() {
    try {
        Execute();
        return 0;
    } catch (const Yr::YrException& failure) {
        std::fprintf(stderr, "morvelan base64 %s: %s\n", m_encode->parsed() ? "encode" : "decode",
                     DescribeFailure(failure).c_str());
    }
    return 1;
}

void Base64Command::Execute() const {
    const std::unique_ptr<Yr::IBinaryChannel> input = OpenInput(m_file);
    StandardOutputChannel standardOutput;
    Yr::BufferedOBinaryChannel output(standardOutput, kOutputBufferSize);
    if (m_encode->parsed())
        EncodeBase64Stream(*input, output, m_urlSafe, m_columns);
    else
        DecodeBase64Stream(*input, output, m_urlSafe);
    output.Flush();
}

}  // namespace Morvelan::Tool
