// The file that --outputfile names: created or emptied in the option pass, filled later, and never left incomplete in
// silence.
//
//     OutputFile output;                                      // before the option pass; closed at its end
//     case '1': output.open(scan.word()); break;              // in the option pass
//     if (output.isNamed() && !output.isOpen()) return output.refuse(pCmdInfo);    // before anything is sent
//     ...
//     output.write(data);                                     // as often as there is something
//     if (!output.close()) return output.refuse(pCmdInfo);
//
// It is the process's one `file`: two of these at a time, or one beside an input file, take it from each other.
#pragma once

#include <span>

#include "api/src/interface/wire/types.h"
#include "cli/Public/common.h"

namespace qrx {

class OutputFile {
public:
    OutputFile() = default;
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Opens `name`, without its double quotes, for writing and empties it; the file of an earlier name is closed.
    // False when that failed, which nobody is told yet. `name` must outlive this.
    bool open(const char* name);
    [[nodiscard]] bool isNamed() const { return name_ != nullptr; }
    [[nodiscard]] bool isOpen() const { return isNamed() && trouble_ == Trouble::kNone; }

    // Appends; what is written is handed to the system at once. After a failure, and without a file, nothing is
    // written any more. False when not everything has been written.
    bool write(std::span<const QRX_U8> bytes);
    // False when the file does not hold everything that was to be written.
    bool close();

    // Says on `stream` why the file could not be opened, or that it is incomplete and why. There must have been a
    // failure. Returns 1.
    [[nodiscard]] int refuse(PCommand_Info row) const;
    // Says on standard error that the file ends too early, where it has been written to and what ought to follow
    // could not be had.
    void warnOfMissingRest(PCommand_Info row) const;

private:
    enum class Trouble : QRX_U8 { kNone, kOpen, kWrite };

    bool fail(Trouble trouble);

    const char* name_ = nullptr;
    bool written_ = false;
    Trouble trouble_ = Trouble::kNone;
    int error_ = 0;  // errno of the trouble
};

}  // namespace qrx
