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
        (void)response.checkSign();
    }
    return status;
}

}  // namespace qrx::info
