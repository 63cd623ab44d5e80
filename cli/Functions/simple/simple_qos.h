// `qos`: the rate limits of a host function.
#pragma once

#include "api/src/interface/wire/qos.h"
#include "cli/Public/common.h"

extern const char simple_qos_help[];
extern const char simple_qos_sh[];

int doQOS(int argc, char** argv, PCommand_Info pCmdInfo);

// Prints the limits of the host function `hostId`.
void showQoSTable(QRX_U16 hostId, const QoSTable& table);
