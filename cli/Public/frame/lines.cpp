// A page of label-and-value lines.
#include "cli/Public/frame/lines.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>

#include "api/src/interface/globals.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/messages.h"

namespace qrx {

namespace {

long signed32(QRX_U64 value)
{
    return static_cast<std::int32_t>(static_cast<QRX_U32>(value));
}

}  // namespace

void Lines::number(const char* label, QRX_U64 value) const
{
    std::fprintf(stream, fmt_Num, width_, label, signed32(value));
}

void Lines::number64(const char* label, QRX_U64 value) const
{
    std::fprintf(stream, fmt_Num64, width_, label, static_cast<unsigned long>(static_cast<QRX_U32>(value)));
}

void Lines::id(const char* label, QRX_U32 zeroBased) const
{
    number(label, QRX_U64{zeroBased} + static_cast<unsigned>(idBase()));
}

void Lines::pair(const char* label, QRX_U64 first, QRX_U64 second) const
{
    std::fprintf(stream, fmt_Array, width_, label, signed32(first), signed32(second));
}

void Lines::hex(const char* label, QRX_U32 value) const
{
    std::fprintf(stream, fmt_Hex, width_, label, value);
}

void Lines::hex64(const char* label, QRX_U64 value) const
{
    std::fprintf(stream, fmt_Hex64, width_, label, static_cast<unsigned long long>(value));
}

void Lines::text(const char* label, const char* value) const
{
    std::fprintf(stream, fmt_Str, width_, label, value);
}

void Lines::textf(const char* label, const char* format, ...) const
{
    std::fprintf(stream, "%-*s ", width_, label);
    va_list arguments;
    va_start(arguments, format);
    (void)std::vfprintf(stream, format, arguments);
    va_end(arguments);
    std::fputs("\n", stream);
}

void Lines::gigabytes(const char* label, QRX_U64 sectors, QRX_U32 sectorSize) const
{
    textf(label, "%lld GB", static_cast<long long>((sectors * sectorSize) >> 30));
}

}  // namespace qrx
