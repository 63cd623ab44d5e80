// The words for the failure codes of the firmware.
#include "cli/Public/errorMsg.h"

const char* ErrorMessage(QRX_U8 errorCode)
{
    switch (errorCode) {
    case 0:
        return "No error";
    case 1:
        return "Failed";
    default:
        return "Unknown error";
    }
}
