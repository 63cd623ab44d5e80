// `spi`: reads or writes the block of the controller's SPI flash that is open to hosts.
#pragma once

#include "cli/Public/common.h"

extern const char spi_help[];

int doSPI(int argc, char** argv, PCommand_Info pCmdInfo);
