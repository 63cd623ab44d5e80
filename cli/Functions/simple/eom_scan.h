// The scan behind `eom`: it steers the eye opening monitor of a PHY register by register, finds the eye along the
// phase axis, and maps it over phase and voltage. A map takes more than 100,000 register accesses.
//
// A scan changes the PHY for its duration. However it ends - by itself, because the monitor does not get ready, by a
// signal - the settings are put back.
#pragma once

#include <chrono>

#include "api/src/interface/wire/types.h"

// Parameters of a scan. Nothing changes them at run time, but tests.
extern QRX_U32 voltage_skip;      // between rows, and the height that a clean row adds
extern QRX_U32 eom_window;        // columns of the map, in phase steps
extern QRX_U32 eom_search_range;  // end of the phase search
extern QRX_U32 min_width;         // a run of clean phases must be wider than this to be the eye
extern QRX_U32 phase_skip;        // step of the search, and the most that the phase register may move at a time
extern QRX_U32 no_plot_loop;      // 0: one plotted pass; N: N passes that measure height and width alone

// State of a scan.
extern int id;                   // the interface, as typed
extern QRX_U32 g_base_addr;      // address of the PHY's register file
extern QRX_U32 nCurrentPhase;    // what the phase register holds; kept from one scan to the next
extern QRX_U32 eyeCenter;        // 0: no eye was found
extern QRX_U32 leftEdge;         // 0: no eye was found
extern QRX_U32 rightEdge;        // never written
extern QRX_U32 eyeWidth;         // of the last search or map
extern QRX_U32 sv_dfe_fx_force;  // settings of the PHY, to be put back
extern QRX_U32 sv_pu_dfe;

// The handshake after a change of settings.
void SetValid();
// Error rate at a point of the eye, in units of 1e-4, over `nPopCount` samples for each of two signs.
QRX_U32 GetBER(QRX_U32 nPhase, QRX_U32 nVoltage, QRX_U32 nPopCount, QRX_U32 eyeSign1, QRX_U32 eyeSign2);
// The character of an error rate.
void PlotSymbol(QRX_U32 berr);
// The stages: switches the monitor on; finds the eye at voltage 0; maps it; all of it.
void InitEOM();
void FindEyeCenter();
void MapEye(QRX_U32 nLeftEdge, QRX_U32 nRightEdge, QRX_U32 nEyeCenter);
void GetEOM();

namespace qrx::eom {

// How long a bit of the monitor is waited for: it is given up when it was looked at so often and so much time is over,
// or could not be read so many times in a row.
struct Patience {
    unsigned looks;
    std::chrono::milliseconds time;
    unsigned failures;
};
extern Patience patience;  // changed by tests alone

}  // namespace qrx::eom
