// `info`: controllers, physical disks, virtual disks and namespaces, read fresh and shown as label-and-value lines.
//
// All operations read from the current controller unless one is given, print to `stream`, and return nothing or a
// status that only counts what was found.
#pragma once

#include "api/src/interface/wire/adapter.h"
#include "api/src/interface/wire/bga.h"
#include "api/src/interface/wire/ns.h"
#include "api/src/interface/wire/pd.h"
#include "api/src/interface/wire/types.h"
#include "api/src/interface/wire/vd.h"
#include "cli/Public/common.h"

extern const char simple_info_help[];

int doSInfo(int argc, char** argv, PCommand_Info pCmdInfo);

inline constexpr QRX_U16 kAllInstances = 255;

// Prints the controller at a table index; all of them for kAllInstances where no controller was named at start. With
// `all` the SUBNQN too.
void getAdapterInfoSA(QRX_U8 adapterID, bool all);
// Prints one PD or VD, or kAllInstances.
void getHDInfoSA(QRX_U16 HDID);
void getLDInfoSA(QRX_U16 LDID);
// Return 0 when a record was printed (and, for a VD, its background activity was read).
QRX_U32 getOneHDInfoSA(QRX_U16 HDID, bool isJBOF);
QRX_U32 getOneLDInfoSA(QRX_U16 LDID);
// Prints the namespace with this NSID, or kAllInstances. `showParentDev` is not read.
void getNSInfoSA(QRX_U16 nsId, bool showParentDev);
// The same among those of one VD, of which the low 8 bits are asked for.
void getNSInfoOfVDSA(QRX_U16 nsId, QRX_U16 vdId);
// Prints the sharing state of a namespace.
void getNMIC(QRX_U8 nsId);

// The printers of one record.
void Adapter_PrintInfo(QRX_U8 AdapterID, const NVME_Adapter_Info& info, bool showSubnqn);
void HD_PrintInfo(const NVME_PD_Info& pd, bool isJBOF);
void LD_PrintInfo(const NVME_VD_Info& vd);
void VD_PrintBGAStatus(const NVME_BGA_STATUS& bga);
void NS_PrintInfo(const NVME_NS_Info& ns, bool isJBOF);

// The controller id of Identify Controller; 0, with a complaint, when it cannot be read.
QRX_U16 get_hostID(QRX_U8 AdapterID);
// 1 when the stored settings of the current controller have SR-IOV on; 0 too when they cannot be read.
QRX_U8 get_sriov_enable();

// 1 when PD `id` of a controller answers. `JBOFMode` is not read.
QRX_U8 checkHDExist(QRX_U16 id, bool JBOFMode, QRX_U8 adapter);
// How many PDs of a controller answer, among the ids that the current controller allows.
QRX_U16 getTotoalPDCnt(QRX_U8 AdapterID);
