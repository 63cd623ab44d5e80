// The commands of the multi-function NVMe device: its child controllers, their properties, events and permissions.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/mfnd.h"
#include "api/src/interface/wire/nvme.h"
#include "cli/Public/common.h"

extern const char mfnd_manage_sh[];
extern const char mfnd_manage_help[];
extern const char mfnd_identify_sh[];
extern const char mfnd_identify_help[];
extern const char mfnd_operation_sh[];
extern const char mfnd_operation_help[];
extern const char mfnd_properties_sh[];
extern const char mfnd_properties_help[];
extern const char mfnd_event_sh[];
extern const char mfnd_event_help[];
extern const char mfnd_child_ctrl_sh[];
extern const char mfnd_child_ctrl_help[];
extern const char mfnd_child_ctrl_log_page_sh[];
extern const char mfnd_child_ctrl_log_page_help[];
extern const char mfnd_cmdpermission_sh[];
extern const char mfnd_cmdpermission_help[];

int doMFND_manage(int argc, char** argv, PCommand_Info pCmdInfo);
int doMFND_identify(int argc, char** argv, PCommand_Info pCmdInfo);
int doMFND_operation(int argc, char** argv, PCommand_Info pCmdInfo);
int doMFND_properties(int argc, char** argv, PCommand_Info pCmdInfo);
int doMFND_event(int argc, char** argv, PCommand_Info pCmdInfo);
int doMFND_child_ctrl(int argc, char** argv, PCommand_Info pCmdInfo);
int doMFND_child_ctrl_log_page(int argc, char** argv, PCommand_Info pCmdInfo);
int doMFND_cmdpermission(int argc, char** argv, PCommand_Info pCmdInfo);

// Prints the health of a child controller to `stream`, all of it.
void show_mfnd_child_SmartInfo(const _qrx_smart_log& smart);

// Makes the list that a text such as 0xaa:1,0xab:0 describes: opcode and flags of each entry. False after a complaint.
bool prepareChildCtrlPermissionData(const char* text, _MSFT_CHILD_CTRL_PERMISSION_LIST* pChildCtrlPermissionList);

namespace qrx {

// The standard opcodes through which its features are reached.
inline constexpr QRX_U8 kMfndSetFeatures = 9;
inline constexpr QRX_U8 kMfndGetFeatures = 10;

// The controller that the operation and the permission command reach, whatever the current one is.
inline constexpr QRX_U8 kMfndParent = 0;

// Reads what `-a` of three of the commands takes; false after a complaint.
bool readMfndAction(const char* word, bool& set);

// Says how many of the entries that a controller tells of are not in the data that it gave, if there are any.
void tellMfndRest(std::size_t told, std::size_t held);

}  // namespace qrx
