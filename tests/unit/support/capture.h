// What a piece of code prints: to `stream`, and to the process's standard output and error.
#pragma once

#include <cstdio>
#include <string>

#include "api/src/interface/globals.h"

namespace qrx::test {

// Keeps the shared state of the handlers over its life: what was before it is there again after it.
class GlobalsGuard {
public:
    GlobalsGuard() = default;
    ~GlobalsGuard();
    GlobalsGuard(const GlobalsGuard&) = delete;
    GlobalsGuard& operator=(const GlobalsGuard&) = delete;

private:
    FILE* stream_ = stream;
    QRX_U8 current_adapter_ = gCurrentAdapter;
    QRX_U8 specific_adapter_ = gSpecificAdapterFlag;
    QRX_U8 adapters_found_ = gNumAdaptersFound;
    PNVME_Adapter_Info infos_ = g_pAdInfos;
    QRX_U8 one_base_mode_ = g_oneBaseMode;
    QRX_U8 debug_ = dbg_enable;
};

// Points `stream` at memory over its life.
class StreamCapture {
public:
    StreamCapture();
    ~StreamCapture();
    StreamCapture(const StreamCapture&) = delete;
    StreamCapture& operator=(const StreamCapture&) = delete;

    // All that has been written so far.
    std::string text();

private:
    char* memory_ = nullptr;
    std::size_t size_ = 0;
    FILE* saved_;
    FILE* sink_;
};

// Catches one of the process's standard descriptors over its life, whoever writes to it.
class FdCapture {
public:
    explicit FdCapture(FILE* standard);  // stdout or stderr
    ~FdCapture();
    FdCapture(const FdCapture&) = delete;
    FdCapture& operator=(const FdCapture&) = delete;

    std::string text();

private:
    FILE* standard_;
    int saved_;
    int sink_;
};

class StdoutCapture : public FdCapture {
public:
    StdoutCapture() : FdCapture(stdout) {}
};

class StderrCapture : public FdCapture {
public:
    StderrCapture() : FdCapture(stderr) {}
};

}  // namespace qrx::test
