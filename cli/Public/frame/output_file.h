// The file that --outputfile names: created or emptied in the option pass, filled later, and never left incomplete in
// silence.
//
//     OutputFile output;                                      // before the option pass; closed at its end
//     case '1': output.open(scan.word()); break;              // in the option pass
//     if (output.hasFailed()) return output.refuse(pCmdInfo); // before anything is sent
//     ...
//     output.write(data);                                     // as often as there is something
//     if (!output.close()) return output.refuse(pCmdInfo);
#pragma once

#include <span>

#include "cli/Public/common.h"
#include "cli/Public/frame/command_file.h"

namespace qrx {

class OutputFile : public CommandFile {
public:
    OutputFile() : CommandFile("wb") {}

    // As its base says; a file that is there is emptied.
    bool open(const char* name);
    // Appends; what is written is handed to the system at once. After a failure, and without a file, nothing is
    // written any more. False when not everything has been written.
    bool write(std::span<const QRX_U8> bytes);
    // False when the file does not hold everything that was to be written.
    bool close();
    // The whole content at once: writes, closes, and says what is wrong, as refuse() does. Returns 0, or 1.
    [[nodiscard]] int save(PCommand_Info row, std::span<const QRX_U8> bytes);

    // Says on `stream` why the file could not be opened, or that it is incomplete and why. There must have been a
    // failure. Returns 1.
    [[nodiscard]] int refuse(PCommand_Info row) const;
    // Closes it at the end of a command that ended with `result`, and says what it lacks; see refuse and
    // warnOfMissingRest. Returns what the command returns: 1 where only the file failed.
    [[nodiscard]] int finish(PCommand_Info row, int result);
    // Says on standard error that the file ends too early, where it has been written to and what ought to follow
    // could not be had.
    void warnOfMissingRest(PCommand_Info row) const;

private:
    bool written_ = false;
};

}  // namespace qrx
