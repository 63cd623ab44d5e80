// A page of label-and-value lines on `stream`, all labels padded to one width. Decimal values are 32 bits wide on
// every page: wider ones lose their upper half here, so that no handler thinks about it.
#pragma once

#include "api/src/interface/wire/types.h"

namespace qrx {

class Lines {
public:
    explicit Lines(int width) : width_(width) {}

    void number(const char* label, QRX_U64 value) const;                // fmt_Num, signed
    void number64(const char* label, QRX_U64 value) const;              // fmt_Num64, unsigned
    void id(const char* label, QRX_U32 zeroBased) const;                // fmt_Num, under the one-based rule
    void pair(const char* label, QRX_U64 first, QRX_U64 second) const;  // fmt_Array
    void hex(const char* label, QRX_U32 value) const;                   // fmt_Hex
    void hex64(const char* label, QRX_U64 value) const;                 // fmt_Hex64
    void text(const char* label, const char* value) const;              // fmt_Str
    // The value in a format of its own.
    void textf(const char* label, const char* format, ...) const __attribute__((format(printf, 3, 4)));
    void yesNo(const char* label, bool value) const { text(label, value ? "Yes" : "No"); }
    // "<n> GB" of `sectors` of `sectorSize` bytes; the product is 64 bits wide.
    void gigabytes(const char* label, QRX_U64 sectors, QRX_U32 sectorSize) const;

private:
    int width_;
};

}  // namespace qrx
