// Data that answers of the NVMe Management Interface carry. Each record lies at the start of the answer's data.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/types.h"
#include "api/src/interface/wire/vpd.h"

struct nvm_subsystem_info_data_structure {
    QRX_U8 Number_of_Ports;  // less 1
    QRX_U8 NVMeMI_Major_Version_Number;
    QRX_U8 NVMeMI_Minor_Version_Number;
    QRX_U8 reserved[29];
};
static_assert(sizeof(nvm_subsystem_info_data_structure) == 32);
static_assert(offsetof(nvm_subsystem_info_data_structure, reserved) == 3);

struct port_info_pcie_data_structure {
    QRX_U8 PCIe_Maximum_Payload_Size;          // 0: 128 bytes, each step twice as much
    QRX_U8 PCIe_Supported_Link_Speeds_Vector;  // bit 0: 2.5 GT/s, bit 1: 5, bit 2: 8
    QRX_U8 PCIe_Current_Link_Speed;            // 0: link down; 1: 2.5 GT/s, 2: 5, 3: 8
    QRX_U8 PCIe_Maximum_Link_Width;            // lanes
    QRX_U8 PCIe_Negotiated_Link_Width;         // lanes; 0: link down
    QRX_U8 Reserved2[19];
};
static_assert(sizeof(port_info_pcie_data_structure) == 24);
static_assert(offsetof(port_info_pcie_data_structure, Reserved2) == 5);

struct port_info_smbus_data_structure {
    QRX_U8 Current_VPD_SMBus_I2C_Address;
    QRX_U8 Maximum_VPD_Access_SMBus_I2C_Frequency;
    QRX_U8 Current_Management_Endpoint_SMBus_I2C_Address;
    QRX_U8 Maximum_Management_Endpoint_SMBus_I2C_Frequency;
    QRX_U8 NVMe_Basic_Management;
    QRX_U8 Reserved2[19];
};
static_assert(sizeof(port_info_smbus_data_structure) == 24);
static_assert(offsetof(port_info_smbus_data_structure, Reserved2) == 5);

struct port_info_data_structure {
    QRX_U8 Port_Type;  // which of the two below
    QRX_U8 Reserved;
    QRX_U16 Maximum_MCTP_Transmission_Unit_Size;  // bytes
    QRX_U8 Reserved1[4];
    union {
        port_info_pcie_data_structure pcie;
        port_info_smbus_data_structure smbus;
    } Port_Type_Specific;
};
static_assert(sizeof(port_info_data_structure) == 32);
static_assert(offsetof(port_info_data_structure, Maximum_MCTP_Transmission_Unit_Size) == 2);
static_assert(offsetof(port_info_data_structure, Port_Type_Specific) == 8);

struct controller_info_data_structure {
    QRX_U8 Port_ID;
    QRX_U8 Reserved[4];
    QRX_U8 PCIe_Routing_ID_Information;
    QRX_U16 PCIe_Routing_ID;
    QRX_U16 PCI_Vendor_ID;
    QRX_U16 PCI_Device_ID;
    QRX_U16 PCI_Subsystem_Vendor_ID;
    QRX_U16 PCI_Subsystem_Device_ID;
    QRX_U8 Reserved1[16];
};
static_assert(sizeof(controller_info_data_structure) == 32);
static_assert(offsetof(controller_info_data_structure, PCIe_Routing_ID_Information) == 5);
static_assert(offsetof(controller_info_data_structure, PCIe_Routing_ID) == 6);
static_assert(offsetof(controller_info_data_structure, PCI_Vendor_ID) == 8);
static_assert(offsetof(controller_info_data_structure, PCI_Subsystem_Device_ID) == 14);
static_assert(offsetof(controller_info_data_structure, Reserved1) == 16);

struct Controller_Status {
    QRX_U16 Ready : 1;
    QRX_U16 Controller_Fatal_Status : 1;
    QRX_U16 Shutdown_Status : 2;
    QRX_U16 NVM_Subsystem_Reset_Occurred : 1;
    QRX_U16 Controller_Enable_Change_Occurre : 1;
    QRX_U16 Namespace_Attribute_Changed : 1;
    QRX_U16 Firmware_Activated : 1;
    QRX_U16 reserved : 8;
};
static_assert(sizeof(Controller_Status) == 2);

struct Critical_Warning {
    QRX_U8 Spare_Threshold : 1;
    QRX_U8 Temperature_Above_or_Under_Threshold : 1;
    QRX_U8 Reliability_Degraded : 1;
    QRX_U8 Read_Only : 1;
    QRX_U8 Volatile_Memory_Backup_Failed : 1;
};
static_assert(sizeof(Critical_Warning) == 1);

struct controller_health_data_structure {
    QRX_U16 Controller_Identifier;
    Controller_Status controller_status;
    QRX_U16 Composite_Temperature;  // kelvins
    QRX_U8 Percentage_Used;
    QRX_U8 Available_Spare;  // percent
    Critical_Warning critical_warning;
    QRX_U8 reserved1[7];
};
static_assert(sizeof(controller_health_data_structure) == 16);
static_assert(offsetof(controller_health_data_structure, controller_status) == 2);
static_assert(offsetof(controller_health_data_structure, Composite_Temperature) == 4);
static_assert(offsetof(controller_health_data_structure, Percentage_Used) == 6);
static_assert(offsetof(controller_health_data_structure, Available_Spare) == 7);
static_assert(offsetof(controller_health_data_structure, critical_warning) == 8);
static_assert(offsetof(controller_health_data_structure, reserved1) == 9);

struct NVM_Subsystem_Status {
    QRX_U8 Reserved : 2;
    QRX_U8 Port1_PCIe_Link_Active : 1;
    QRX_U8 Port0_PCIe_Link_Active : 1;
    QRX_U8 Reset_Not_Required : 1;
    QRX_U8 Drive_Functional : 1;
    QRX_U8 Reserved1 : 2;
};
static_assert(sizeof(NVM_Subsystem_Status) == 1);

struct Composite_Controller_Status {
    QRX_U16 Ready : 1;
    QRX_U16 Controller_Fatal_Status : 1;
    QRX_U16 Shutdown_Status : 2;
    QRX_U16 NVM_Subsystem_Reset_Occurred : 1;
    QRX_U16 Controller_Enable_Change_Occurred : 1;
    QRX_U16 Namespace_Attribute_Changed : 1;
    QRX_U16 Firmware_Activated : 1;
    QRX_U16 Controller_Status_Change : 1;
    QRX_U16 Composite_Temperature_Change : 1;
    QRX_U16 Percentage_Used : 1;
    QRX_U16 Available_Spare : 1;
    QRX_U16 Critical_Warning : 1;
    QRX_U16 Reserved2 : 2;
};
static_assert(sizeof(Composite_Controller_Status) == 2);

struct nvm_subsystem_health_data_structure {
    NVM_Subsystem_Status nvm_subsystem_status;
    QRX_U8 Smart_Warnings;         // a bit that is 0 tells a warning
    QRX_U8 Composite_Temperature;  // degrees Celsius
    QRX_U8 Percentage_Drive_Life_Used;
    Composite_Controller_Status composite_controller_status;
    QRX_U8 Reserved3[2];
};
static_assert(sizeof(nvm_subsystem_health_data_structure) == 8);
static_assert(offsetof(nvm_subsystem_health_data_structure, Smart_Warnings) == 1);
static_assert(offsetof(nvm_subsystem_health_data_structure, Percentage_Drive_Life_Used) == 3);
static_assert(offsetof(nvm_subsystem_health_data_structure, composite_controller_status) == 4);
static_assert(offsetof(nvm_subsystem_health_data_structure, Reserved3) == 6);
