// Messages of the NVMe Management Interface, as they travel in band: a request in the data of NVMe-MI Send, its answer
// in the data of NVMe-MI Receive.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/mi_data.h"
#include "api/src/interface/wire/types.h"

// Values of nvmemi_message_header::message_type and ::NVMe_MI_Msg_Type.
inline constexpr QRX_U8 kMiMessageType = 4;
inline constexpr QRX_U8 kMiCommand = 1;
inline constexpr QRX_U8 kMiAdminCommand = 2;

// Opcodes of Management Interface commands.
inline constexpr QRX_U8 kMiVpdRead = 5;
inline constexpr QRX_U8 kMiVpdWrite = 6;

// The first four bytes of every message.
struct nvmemi_message_header {
    QRX_U8 message_type : 7;      // kMiMessageType
    QRX_U8 IC : 1;                // the message ends with an integrity check
    QRX_U8 CSI : 1;               // command slot
    QRX_U8 Reserved : 2;          // 0
    QRX_U8 NVMe_MI_Msg_Type : 4;  // kMiCommand or kMiAdminCommand
    QRX_U8 ROR : 1;               // 0 request, 1 response
    QRX_U16 Reserved1;            // 0
};
static_assert(sizeof(nvmemi_message_header) == 4);
static_assert(offsetof(nvmemi_message_header, Reserved1) == 2);

// The header of a request of the host. The integrity check that it announces is left 0.
constexpr nvmemi_message_header miRequestHeader(QRX_U8 type)
{
    // A field of 4 bits takes the type; & tells the compiler so.
    return {kMiMessageType, 1, 0, 0, static_cast<QRX_U8>(type & 0xF), 0, 0};
}

inline constexpr std::size_t kMiDataMax = 1024;       // bytes of data of a Management Interface message
inline constexpr std::size_t kMiAdminDataMax = 4096;  // of a message with an admin command

struct nvmemi_command_request_message {
    nvmemi_message_header header;
    QRX_U8 Opcode;
    QRX_U8 Reserved2;     // 0
    QRX_U16 Reserved3;    // 0
    QRX_U32 Request_DW0;  // VPD: offset, bytes
    QRX_U32 Request_DW1;  // VPD: length, bytes
    QRX_U8 Request_Data[kMiDataMax];
};
static_assert(sizeof(nvmemi_command_request_message) == 1040);
static_assert(offsetof(nvmemi_command_request_message, Opcode) == 4);
static_assert(offsetof(nvmemi_command_request_message, Reserved3) == 6);
static_assert(offsetof(nvmemi_command_request_message, Request_DW0) == 8);
static_assert(offsetof(nvmemi_command_request_message, Request_DW1) == 12);
static_assert(offsetof(nvmemi_command_request_message, Request_Data) == 16);

struct nvmemi_command_response_message {
    nvmemi_message_header header;
    QRX_U32 Status : 8;  // 0: carried out
    QRX_U32 NVMe_Management_Response : 24;
    union {
        nvm_subsystem_info_data_structure nvm_subsystem_info;
        port_info_data_structure port_info;
        controller_info_data_structure controller_info;
        controller_health_data_structure nvme_controller_health;
        nvm_subsystem_health_data_structure nvm_subsystem_health;
        ::vpd_elements vpd_elements;
        QRX_U8 Response_Data[kMiDataMax];
    } Response_Data_Frame;
    QRX_U32 Message_Integrity_Check;
};
static_assert(sizeof(nvmemi_command_response_message) == 1036);
static_assert(offsetof(nvmemi_command_response_message, Response_Data_Frame) == 8);
static_assert(offsetof(nvmemi_command_response_message, Message_Integrity_Check) == 1032);

struct nvmemi_admin_command_request_message {
    nvmemi_message_header header;
    QRX_U8 Opcode;
    QRX_U8 Command_Flags;
    QRX_U16 Controller_ID;
    QRX_U32 Submission_Queue_Entry_Dword1;
    QRX_U32 Submission_Queue_Entry_Dword2;
    QRX_U32 Submission_Queue_Entry_Dword3;
    QRX_U32 Submission_Queue_Entry_Dword4;
    QRX_U32 Submission_Queue_Entry_Dword5;
    QRX_U32 Data_Offset;  // bytes
    QRX_U32 Data_Length;  // bytes
    QRX_U32 Submission_Queue_Entry_Dword8;
    QRX_U32 Submission_Queue_Entry_Dword9;
    QRX_U32 Submission_Queue_Entry_Dword10;
    QRX_U32 Submission_Queue_Entry_Dword11;
    QRX_U32 Submission_Queue_Entry_Dword12;
    QRX_U32 Submission_Queue_Entry_Dword13;
    QRX_U32 Submission_Queue_Entry_Dword14;
    QRX_U32 Submission_Queue_Entry_Dword15;
    QRX_U8 Request_Data[kMiAdminDataMax];
    QRX_U32 Message_Integrity_Check;
};
static_assert(sizeof(nvmemi_admin_command_request_message) == 4168);
static_assert(offsetof(nvmemi_admin_command_request_message, Opcode) == 4);
static_assert(offsetof(nvmemi_admin_command_request_message, Command_Flags) == 5);
static_assert(offsetof(nvmemi_admin_command_request_message, Controller_ID) == 6);
static_assert(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword1) == 8);
static_assert(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword5) == 24);
static_assert(offsetof(nvmemi_admin_command_request_message, Data_Offset) == 28);
static_assert(offsetof(nvmemi_admin_command_request_message, Data_Length) == 32);
static_assert(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword8) == 36);
static_assert(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword10) == 44);
static_assert(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword14) == 60);
static_assert(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword15) == 64);
static_assert(offsetof(nvmemi_admin_command_request_message, Request_Data) == 68);
static_assert(offsetof(nvmemi_admin_command_request_message, Message_Integrity_Check) == 4164);

struct nvmemi_admin_command_response_message {
    nvmemi_message_header header;
    QRX_U32 Status : 8;  // 0: carried out
    QRX_U32 Reserved2 : 24;
    QRX_U32 Completion_Queue_Entry_Dword0;
    QRX_U32 Completion_Queue_Entry_Dword1;
    QRX_U32 Completion_Queue_Entry_Dword3;
    QRX_U8 NVMe_Response_Data[kMiAdminDataMax];
    QRX_U32 Message_Integrity_Check;
};
static_assert(sizeof(nvmemi_admin_command_response_message) == 4120);
static_assert(offsetof(nvmemi_admin_command_response_message, Completion_Queue_Entry_Dword0) == 8);
static_assert(offsetof(nvmemi_admin_command_response_message, Completion_Queue_Entry_Dword1) == 12);
static_assert(offsetof(nvmemi_admin_command_response_message, Completion_Queue_Entry_Dword3) == 16);
static_assert(offsetof(nvmemi_admin_command_response_message, NVMe_Response_Data) == 20);
static_assert(offsetof(nvmemi_admin_command_response_message, Message_Integrity_Check) == 4116);
