// What `ns` knows of the namespaces and of its own function while it runs.
#pragma once

#include <array>

#include "api/src/interface/wire/ns.h"
#include "api/src/interface/wire/types.h"
#include "cli/Public/frame/admin_command.h"

// One namespace of the current controller. All zero for an empty slot of its list.
struct _NSInfo {
    QRX_U8 NSID;
    QRX_U8 EUI64[8];
    QRX_U16 Parent_PDID;  // parent id, 0-based
    QRX_U8 Status;        // kNs bits
    QRX_U32 SectorSize;   // bytes
    QRX_U64 LBA;          // sectors
};
using NSInfo = _NSInfo;

extern NSInfo* pGNSInfo;   // MaxNS rows while an NsTable lives, otherwise null
extern QRX_U16 gTotalNSs;  // rows filled, as of the last list that was not empty
extern QRX_U16 gHostID;    // controller id of this function, as of the last time it could be read

// Controller ids of the host functions.
inline constexpr QRX_U16 UCD_HIU_PF0 = 0;
inline constexpr QRX_U16 UCD_HIU_PF1 = 1;
inline constexpr QRX_U16 UCD_HIU_VF0 = 2;

// Fills pGNSInfo: the list of namespaces, and the EUI64 of each.
void initNSInfoStrcuture();
// Stores the 8 bytes of a namespace's EUI64; complains, and leaves them alone, when they cannot be read.
void get_EUI64(QRX_U8 nsID, QRX_U8* pEUI64);
// The id of the namespace with this EUI64, as 16 lower-case hexadecimal digits, or -1.
int getNSIDfromEUI64(const char* EUI64);
// Sets gHostID; leaves it alone, but for the status text, when it cannot be read.
void getHostID();

namespace qrx {

// The rows behind pGNSInfo, one at a time.
class NsTable {
public:
    NsTable() { pGNSInfo = rows_.data(); }
    ~NsTable() { pGNSInfo = nullptr; }
    NsTable(const NsTable&) = delete;
    NsTable& operator=(const NsTable&) = delete;

private:
    std::array<NSInfo, 255> rows_{};
};

// Reads the list of namespaces of the current controller; false, but for the status text in silence, when the answer is
// not signed or refuses.
bool readNsList(Response& response);

}  // namespace qrx
