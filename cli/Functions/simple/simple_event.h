// `event`: the controller's event log, newest first.
#pragma once

#include <span>
#include <string_view>

#include "api/src/interface/wire/event.h"
#include "cli/Public/common.h"

extern const char simple_event_help[];

int doSEvent(int argc, char** argv, PCommand_Info pCmdInfo);

// Reads the ring of the current controller and shows its latest `showEventCounts` events, all of them for 0. Returns
// 0, or where there was no event the status of the last page; 1 when memory is short.
int getPageEventSA(int showEventCounts);

// Takes a line of the ring apart. Returns 1 for a good one, else 0 after a complaint on standard output; the item then
// holds what was found before the flaw.
int _eventParser(std::string_view line, PNVME_SA_Evt_Item pevtItem);

// Shows one event on `stream`, in three lines.
void _showEvt(const _NVME_SA_Evt_Item* pevtItem);

// Writes a time stamp in words, terminated, and cut where `buf` is short of 40 letters.
void _showTime(QRX_U32 evt_ul_time, std::span<char> buf);
