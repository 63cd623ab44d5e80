// The words for codes of the firmware: ErrorMessage for its failure codes, which the access layer has too, and
// EventMessage for what happened to a controller and what is behind it.
#pragma once

#include "api/src/interface/agent.h"
#include "api/src/interface/wire/types.h"

// The message of an event of class `classCode` (QRX_EVT_CLASS); "Unknown event" for a class that there is not. In
// some of them "%d" stands for a value of the event, "%%" for a percent sign: they are formats.
const char* EventMessage(QRX_U32 classCode, QRX_U32 code);

// The messages of one class each; "Unknown error" for a code that it does not have.
const char* _evtAdapterMsg(QRX_U32 code);
const char* _evtPDMsg(QRX_U32 code);
const char* _evtVDMsg(QRX_U32 code);
const char* _evtNSMsg(QRX_U32 code);
const char* _evtOEMMsg(QRX_U32 code);
