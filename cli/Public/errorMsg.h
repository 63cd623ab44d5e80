// The words for the failure codes of the firmware: ErrorMessage, which the access layer has too.
#pragma once

#include "api/src/interface/agent.h"
