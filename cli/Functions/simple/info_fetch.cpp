// How `info` reads.
#include "cli/Functions/simple/info_fetch.h"

#include "cli/Public/frame/report.h"

namespace qrx::info {

int fetch(const AdminCommand& command, std::initializer_list<unsigned> shown, Response& response, Status spoken,
          QRX_U8 adapter)
{
    command.debug(shown);
    const int status = spoken == Status::Spoken ? command.receive(response.bytes(), adapter)
                                                : command.receiveQuietly(response.bytes(), adapter);
    if (dbg_enable != 0) {
        print("cmd_status: 0x%x\n", response.status());
        if (!response.isSigned()) {
            const auto sign = response.bytes().first<3>();
            print("receive sign get 0x%x 0x%x 0x%x expect 0x%x 0x%x 0x%x\n", sign[0], sign[1], sign[2], kFrameSign[0],
                  kFrameSign[1], kFrameSign[2]);
        }
    }
    return status;
}

}  // namespace qrx::info
