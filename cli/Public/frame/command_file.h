// What InputFile and OutputFile have in common: how a file that an option names is opened, whose turn it is, and what
// is remembered of a failure. One that another of them has open is not opened again: an input file that is the output
// file too would be emptied before it is read.
//
// The file in use is the process's one `file`. A command may have several of these: one that was opened before is kept
// aside, as it stands, until it is used again. So a pipe loses nothing.
#pragma once

#include <cstdio>
#include <string>
#include <utility>

#include "api/src/interface/wire/types.h"

namespace qrx {

class CommandFile {
public:
    CommandFile(const CommandFile&) = delete;
    CommandFile& operator=(const CommandFile&) = delete;

    // Opens `name`, without its double quotes; the file of an earlier name is closed, its failures are forgotten. False
    // when that failed, which nobody is told yet. `name` must outlive this.
    bool open(const char* name);
    [[nodiscard]] bool isNamed() const { return name_ != nullptr; }
    // Nothing has failed since it was named.
    [[nodiscard]] bool isOpen() const { return isNamed() && trouble_ == Trouble::kNone; }
    // Something has.
    [[nodiscard]] bool hasFailed() const { return isNamed() && trouble_ != Trouble::kNone; }

protected:
    enum class Trouble : QRX_U8 { kNone, kOpen, kInUse, kRead, kLength, kWrite };

    // `mode` is that of fopen, and outlives this.
    explicit CommandFile(const char* mode) : mode_(mode), next_(std::exchange(newest_, this)) {}
    ~CommandFile();

    // Makes it `file`. False when there is none.
    bool use();
    // Closes it. What fclose says; 0 when there was none.
    int close();
    // Notes the trouble with its errno. Returns false.
    bool fail(Trouble trouble);

    [[nodiscard]] const char* name() const { return name_ != nullptr ? name_ : ""; }
    [[nodiscard]] Trouble trouble() const { return trouble_; }
    [[nodiscard]] const char* reason() const;

private:
    static CommandFile* user_;    // whose file `file` is
    static CommandFile* newest_;  // all there are, chained

    [[nodiscard]] FILE* held() const;
    [[nodiscard]] bool isInUse(const std::string& path) const;

    const char* mode_;
    CommandFile* next_;
    const char* name_ = nullptr;
    FILE* aside_ = nullptr;  // while another one is in use
    Trouble trouble_ = Trouble::kNone;
    int error_ = 0;  // errno of the trouble
};

}  // namespace qrx
