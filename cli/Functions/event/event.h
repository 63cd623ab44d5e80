// `event` in its older form: the controller's binary ring of events, newest first, in the words of its own log.
#pragma once

#include "api/src/interface/wire/event.h"
#include "api/src/interface/wire/types.h"
#include "cli/Public/common.h"

extern const char event_help[];

int doEvent(int argc, char** argv, PCommand_Info pCmdInfo);

// Reads the ring of the current controller and shows its latest `event_count` events, all of them for 0. Returns 0, or
// after a complaint what the controller said, or 1.
int getPageEvent(QRX_U16 event_count);

// Shows one event: its text, taken apart again.
void qx_generate_new_events(const NVME_Event_Item& param);
