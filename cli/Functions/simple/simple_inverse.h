// `inverse`: reads or sets the inversion of GPIO 8 to 11, the PERST# lines of the drives.
#pragma once

#include "api/src/interface/wire/types.h"
#include "cli/Public/common.h"

extern const char simple_inverse_help[];

int doInverse(int argc, char** argv, PCommand_Info pCmdInfo);

// Prints the line of the controller's answer, of which the first byte counts: 0 not inverted, 1 inverted.
void showInverseStatus(const QRX_U8* data);
