#include "Common/IO/ZipTime.h"

#include <ctime>

namespace Morvelan::Common::IO {
namespace {

constexpr int kFirstYear = 1980;
constexpr int kLastYear = kFirstYear + 127;

}  // namespace

Yr::UInt32 ZipTime::ToDosDateTime(Yr::Int64 unixSeconds) {
    const std::time_t time = unixSeconds;
    std::tm fields{};
    localtime_r(&time, &fields);
    const int year = fields.tm_year + 1900;
    if (year < kFirstYear) return (1 << 5 | 1) << 16;  // 1980-01-01 00:00
    if (year > kLastYear) return 0xFF9FBF7D;           // 2107-12-31 23:59:58
    const auto date = static_cast<Yr::UInt32>((year - kFirstYear) << 9 |
                                              (fields.tm_mon + 1) << 5 | fields.tm_mday);
    const auto clock = static_cast<Yr::UInt32>(fields.tm_hour << 11 | fields.tm_min << 5 |
                                               fields.tm_sec / 2);
    return date << 16 | clock;
}

Yr::Int64 ZipTime::FromDosDateTime(Yr::UInt32 dosDateTime) {
    std::tm fields{};
    fields.tm_year = static_cast<int>(dosDateTime >> 25 & 0x7F) + kFirstYear - 1900;
    fields.tm_mon = static_cast<int>(dosDateTime >> 21 & 0xF) - 1;
    fields.tm_mday = static_cast<int>(dosDateTime >> 16 & 0x1F);
    fields.tm_hour = static_cast<int>(dosDateTime >> 11 & 0x1F);
    fields.tm_min = static_cast<int>(dosDateTime >> 5 & 0x3F);
    fields.tm_sec = static_cast<int>(dosDateTime & 0x1F) * 2;
    // Daylight saving as it was on that day.
    fields.tm_isdst = -1;
    return std::mktime(&fields);
}

}  // namespace Morvelan::Common::IO
