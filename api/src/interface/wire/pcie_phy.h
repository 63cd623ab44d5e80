// The register file of the PHY of a PCIe interface, with its eye opening monitor (EOM): 168 registers of 32 bits.
//
// Only the registers that the monitor needs are told apart into fields; each is a union of `all`, the whole register,
// and `b`, its fields from bit 0 on. The others are plain words. The names of reserved fields are those of the PHY.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/types.h"

// Where the file begins in the address space of the interface.
inline constexpr QRX_U32 kPciePhyBase = 0xE2A00000;

union PowerAndPllCtrl_t {
    QRX_U32 all;
    struct {
        QRX_U32 REF_FREF_SEL : 5;
        QRX_U32 PHY_MODE : 3;
        QRX_U32 PLL_LOCK : 1;
        QRX_U32 R100C0004_9_RSVD : 1;
        QRX_U32 PU_DFE : 1;  // the decision feedback equaliser has power
        QRX_U32 R100C0004_11_RSVD : 1;
        QRX_U32 PU_TX : 1;
        QRX_U32 PU_RX : 1;
        QRX_U32 PU_PLL : 1;
        QRX_U32 R100C0004_15_RSVD : 1;
        QRX_U32 R100C0004_31_16_RSVD : 16;
    } b;
};
union DfeUpdateCtrl_t {
    QRX_U32 all;
    struct {
        QRX_U32 DFE_FX_FORCE : 6;  // taps held at their value, one bit each
        QRX_U32 DFE_UPDATE_EN : 6;
        QRX_U32 F0_SAT_HOLD_THRES : 2;
        QRX_U32 F0_SAT_HOLD : 1;
        QRX_U32 F0_SAT_EN : 1;
        QRX_U32 R100C0020_31_16_RSVD : 16;
    } b;
};
union EomCircuitCtrl_t {
    QRX_U32 all;
    struct {
        QRX_U32 R100C009C_0_RSVD : 1;
        QRX_U32 R100C009C_3_1_RSVD : 3;
        QRX_U32 EOM_SAM_VLD_TIME : 3;
        QRX_U32 R100C009C_9_7_RSVD : 3;
        QRX_U32 EOM_MEASURE_STATE : 2;  // sign of the measurement, as in EOM_SET1_SIGN_BIT
        QRX_U32 R100C009C_12_RSVD : 1;
        QRX_U32 EOM_READY : 1;  // follows EOM_EN
        QRX_U32 R100C009C_14_RSVD : 1;
        QRX_U32 EOM_EN : 1;  // the monitor is on
        QRX_U32 R100C009C_31_16_RSVD : 16;
    } b;
};
union EomSet1Ctrl0_t {
    QRX_U32 all;
    struct {
        QRX_U32 EOM_SET1_VOLTAGE : 6;   // sampling voltage
        QRX_U32 EOM_SET1_SIGN_BIT : 2;  // bit 0: upper half of the eye
        QRX_U32 R100C00A0_12_8_RSVD : 5;
        QRX_U32 EOM_SET1_VLD : 1;  // the settings are complete: measure
        QRX_U32 EOM_SET1_STOP_EN : 2;
        QRX_U32 R100C00A0_31_16_RSVD : 16;
    } b;
};
union EomSet1Ctrl1_t {
    QRX_U32 all;
    struct {
        QRX_U32 EOM_SET1_PHASE : 7;  // sampling phase
        QRX_U32 R100C00A4_11_7_RSVD : 5;
        QRX_U32 EOM_SET1_STOP_STS : 3;
        QRX_U32 EOM_SET1_RDY : 1;  // the measurement is done
        QRX_U32 R100C00A4_31_16_RSVD : 16;
    } b;
};
union EomSet1PopCntr0_t {
    QRX_U32 all;
    struct {
        QRX_U32 EOM_SET1_POP_CNT_63_48 : 16;
        QRX_U32 R100C00A8_31_16_RSVD : 16;
    } b;
};
union EomSet1PopCntr1_t {
    QRX_U32 all;
    struct {
        QRX_U32 EOM_SET1_POP_CNT_47_32 : 16;
        QRX_U32 R100C00AC_31_16_RSVD : 16;
    } b;
};
union EomSet1PopCntr2_t {
    QRX_U32 all;
    struct {
        QRX_U32 EOM_SET1_POP_CNT_31_16 : 16;
        QRX_U32 R100C00B0_31_16_RSVD : 16;
    } b;
};
union EomSet1PopCntr3_t {
    QRX_U32 all;
    struct {
        QRX_U32 EOM_SET1_POP_CNT_15_0 : 16;
        QRX_U32 R100C00B4_31_16_RSVD : 16;
    } b;
};
union EomSet1ThrCntr0_t {
    QRX_U32 all;
    struct {
        QRX_U32 EOM_SET1_THRE_CNT_63_48 : 16;
        QRX_U32 R100C00B8_31_16_RSVD : 16;
    } b;
};
union EomSet1ThrCntr1_t {
    QRX_U32 all;
    struct {
        QRX_U32 EOM_SET1_THRE_CNT_47_32 : 16;
        QRX_U32 R100C00BC_31_16_RSVD : 16;
    } b;
};
union EomSet1ThrCntr2_t {
    QRX_U32 all;
    struct {
        QRX_U32 EOM_SET1_THRE_CNT_31_16 : 16;
        QRX_U32 R100C00C0_31_16_RSVD : 16;
    } b;
};
union EomSet1ThrCntr3_t {
    QRX_U32 all;
    struct {
        QRX_U32 EOM_SET1_THRE_CNT_15_0 : 16;
        QRX_U32 R100C00C4_31_16_RSVD : 16;
    } b;
};
union EomSet1SampleCntr0_t {
    QRX_U32 all;
    struct {
        QRX_U32 EOM_SET1_SAMPLE_CNT_63_48 : 16;
        QRX_U32 R100C00C8_31_16_RSVD : 16;
    } b;
};
union EomSet1SampleCntr1_t {
    QRX_U32 all;
    struct {
        QRX_U32 EOM_SET1_SAMPLE_CNT_47_32 : 16;
        QRX_U32 R100C00CC_31_16_RSVD : 16;
    } b;
};
union EomSet1SampleCntr2_t {
    QRX_U32 all;
    struct {
        QRX_U32 EOM_SET1_SAMPLE_CNT_31_16 : 16;
        QRX_U32 R100C00D0_31_16_RSVD : 16;
    } b;
};
union EomSet1SampleCntr3_t {
    QRX_U32 all;
    struct {
        QRX_U32 EOM_SET1_SAMPLE_CNT_15_0 : 16;
        QRX_U32 R100C00D4_31_16_RSVD : 16;
    } b;
};
union EomSet1ErrCntr0_t {
    QRX_U32 all;
    struct {
        QRX_U32 EOM_SET1_ERROR_CNT_63_48 : 16;
        QRX_U32 R100C00D8_31_16_RSVD : 16;
    } b;
};
union EomSet1ErrCntr1_t {
    QRX_U32 all;
    struct {
        QRX_U32 EOM_SET1_ERROR_CNT_47_32 : 16;
        QRX_U32 R100C00DC_31_16_RSVD : 16;
    } b;
};
union EomSet1ErrCntr2_t {
    QRX_U32 all;
    struct {
        QRX_U32 EOM_SET1_ERROR_CNT_31_16 : 16;
        QRX_U32 R100C00E0_31_16_RSVD : 16;
    } b;
};
union EomSet1ErrCntr3_t {
    QRX_U32 all;
    struct {
        QRX_U32 EOM_SET1_ERROR_CNT_15_0 : 16;
        QRX_U32 R100C00E4_31_16_RSVD : 16;
    } b;
};
union EomPhCtrl_t {
    QRX_U32 all;
    struct {
        QRX_U32 R100C02EC_15_0_RSVD : 16;
        QRX_U32 R100C02EC_31_16_RSVD : 16;
    } b;
};
union EomCalCtrl0_t {
    QRX_U32 all;
    struct {
        QRX_U32 R100C0308_3_0_RSVD : 4;
        QRX_U32 R100C0308_4_RSVD : 1;
        QRX_U32 R100C0308_5_RSVD : 1;
        QRX_U32 ALIGN_EOM_FULL_RANGE : 1;
        QRX_U32 EXT_ALIGN_EOM_CNT_6_0 : 7;
        QRX_U32 ALIGN_EOM_CNT_EXT_EN : 1;
        QRX_U32 R100C0308_15_RSVD : 1;
        QRX_U32 R100C0308_31_16_RSVD : 16;
    } b;
};
union EomCalCtrl1_t {
    QRX_U32 all;
    struct {
        QRX_U32 R100C030C_8_0_RSVD : 9;
        QRX_U32 CAL_EOM_PH_RD_6_0 : 7;
        QRX_U32 R100C030C_31_16_RSVD : 16;
    } b;
};

struct PciePhy_t {
    QRX_U32 Chip_id;
    PowerAndPllCtrl_t powerAndPllCtrl;
    QRX_U32 kvcoCalibrationCtrl;
    QRX_U32 ImpCalibrationCtrl;
    QRX_U32 ImpTxSSCCtrl;
    QRX_U32 TranFrequencyOffset;
    QRX_U32 SquelchFFEsetting;
    QRX_U32 dfeResolutionCtrl;
    DfeUpdateCtrl_t dfeUpdateCtrl;
    QRX_U32 dfeF0F2CoefCtrl;
    QRX_U32 dfeF3F5CoefCtrl;
    QRX_U32 adapteDFECoef0;
    QRX_U32 adapteDFECoef1;
    QRX_U32 gen1setting0;
    QRX_U32 gen1setting1;
    QRX_U32 gen2setting0;
    QRX_U32 gen2setting1;
    QRX_U32 gen3setting0;
    QRX_U32 gen3setting1;
    QRX_U32 gen4setting0;
    QRX_U32 gen4setting1;
    QRX_U32 phyTestCtrl0;
    QRX_U32 phyTestData0;
    QRX_U32 phyTestData1;
    QRX_U32 phyTestData2;
    QRX_U32 phyTestData3;
    QRX_U32 phyTestData4;
    QRX_U32 phyTestData5;
    QRX_U32 phyTestPRBSCnt0;
    QRX_U32 phyTestPRBSCnt1;
    QRX_U32 phyTestPRBSCnt2;
    QRX_U32 phyTestPRBSErrCnt0;
    QRX_U32 phyTestPRBSErrCnt1;
    QRX_U32 phyTestOOB0;
    QRX_U32 phyTestOOB;
    QRX_U32 digitalLookpbackEn;
    QRX_U32 syncPattern;
    QRX_U32 syncMaskMaxGenSetting;
    QRX_U32 phyIsolationModeCtrl;
    EomCircuitCtrl_t eomCircuitCtrl;
    EomSet1Ctrl0_t eomSet1Ctrl0;
    EomSet1Ctrl1_t eomSet1Ctrl1;
    EomSet1PopCntr0_t eomSet1PopCntr0;
    EomSet1PopCntr1_t eomSet1PopCntr1;
    EomSet1PopCntr2_t eomSet1PopCntr2;
    EomSet1PopCntr3_t eomSet1PopCntr3;
    EomSet1ThrCntr0_t eomSet1ThrCntr0;
    EomSet1ThrCntr1_t eomSet1ThrCntr1;
    EomSet1ThrCntr2_t eomSet1ThrCntr2;
    EomSet1ThrCntr3_t eomSet1ThrCntr3;
    EomSet1SampleCntr0_t eomSet1SampleCntr0;
    EomSet1SampleCntr1_t eomSet1SampleCntr1;
    EomSet1SampleCntr2_t eomSet1SampleCntr2;
    EomSet1SampleCntr3_t eomSet1SampleCntr3;
    EomSet1ErrCntr0_t eomSet1ErrCntr0;
    EomSet1ErrCntr1_t eomSet1ErrCntr1;
    EomSet1ErrCntr2_t eomSet1ErrCntr2;
    EomSet1ErrCntr3_t eomSet1ErrCntr3;
    QRX_U32 externalDigiRsvd0;
    QRX_U32 dfeStepSizeReg0;
    QRX_U32 dfeStepSizeReg1;
    QRX_U32 gen1setting2;
    QRX_U32 gen2setting2;
    QRX_U32 gen3setting2;
    QRX_U32 gen4setting2;
    QRX_U32 vthimpcalValCtrl;
    QRX_U32 vddCalibartionCtrl0;
    QRX_U32 vddCalibartionCtrl1;
    QRX_U32 vddCalibartionCtrl2;
    QRX_U32 vddCalibartionCtrl3;
    QRX_U32 AnalogReserved1;
    QRX_U32 AnalogReserved2;
    QRX_U32 PCIEUSB3Ctrl;
    QRX_U32 LaneAlignmentCtrl;
    QRX_U32 AnalogTestPointSelection;
    QRX_U32 _150MClockCtrl0;
    QRX_U32 _150MClockCtrl1;
    QRX_U32 RegulatorOutputCtrl0;
    QRX_U32 RegulatorOutputCtrl1;
    QRX_U32 MiscellaneousCtrl0;
    QRX_U32 RxCtrl1;
    QRX_U32 InterfaceDigitalRefClockCtrl;
    QRX_U32 PowerCtrlReg;
    QRX_U32 FeedbackDivider;
    QRX_U32 ForwardDivider;
    QRX_U32 TransReceiverSpeedDividerForce;
    QRX_U32 PLLBandwidthAdjust;
    QRX_U32 CalibrationEnableCtrl;
    QRX_U32 TxDCCCtrl;
    QRX_U32 RxDCCEdgeCenterCtrl;
    QRX_U32 RxCLKAlign90TxIdleCalibrationCtrl;
    QRX_U32 SamplerProcessCalibrationCtrl;
    QRX_U32 ProcessThresholdSetting;
    QRX_U32 TransmitterSlewRateCtrl;
    QRX_U32 TransAmplitudeEmphasisCtrl;
    QRX_U32 SSCCtrl;
    QRX_U32 SSCStep;
    QRX_U32 DTLCtrl;
    QRX_U32 OffsetPhaseCtrl;
    QRX_U32 ReceiverFrequencyOffsetExtraction;
    QRX_U32 ReceiverFrequencyOffsetRead;
    QRX_U32 ReceiverOffsetCtrl;
    QRX_U32 ReceiverClampingCtrl;
    QRX_U32 DFEMiscCtrl;
    QRX_U32 DataPhaseOffsetCtrl;
    QRX_U32 PCIePHYReg0;
    QRX_U32 PCIePHYReg1;
    QRX_U32 PCIePHYReg2;
    QRX_U32 PCIePHYReg3;
    QRX_U32 PCIePHYReg4;
    QRX_U32 PCIePHYReg5;
    QRX_U32 PCIePHYReg6;
    QRX_U32 PCIePHYReg8;
    QRX_U32 PCIePHYReg9;
    QRX_U32 PCIePHYReg10;
    QRX_U32 PCIePHYReg11;
    QRX_U32 PCIePHYReg12;
    QRX_U32 PCIePHYReg13;
    QRX_U32 PCIePHYReg14;
    QRX_U32 PCIePHYReg15;
    QRX_U32 PCIePHYReg16;
    QRX_U32 PCIePHYReg17;
    QRX_U32 PCIePHYReg18;
    QRX_U32 PCIePHYReg19;
    QRX_U32 PCIePHYReg20;
    QRX_U32 PCIePHYReg21;
    QRX_U32 PCIePHYReg22;
    QRX_U32 PCIePHYReg23;
    QRX_U32 PCIePHYReg24;
    QRX_U32 PCIePHYReg25;
    QRX_U32 PCIePHYReg26;
    QRX_U32 PCIePHYReg27;
    QRX_U32 PCIePHYReg28;
    QRX_U32 PCIePHYReg29;
    QRX_U32 PCIePHYReg30;
    QRX_U32 PCIePHYReg31;
    QRX_U32 PCIePHYReg32;
    QRX_U32 PCIePHYReg33;
    QRX_U32 PCIePHYReg34;
    QRX_U32 PCIePHYReg35;
    QRX_U32 PCIePHYReg36;
    QRX_U32 PCIePHYReg37;
    QRX_U32 PCIePHYReg38;
    QRX_U32 PCIePHYReg39;
    QRX_U32 PCIePHYReg40;
    QRX_U32 PCIePHYReg41;
    QRX_U32 PCIePHYReg42;
    QRX_U32 PCIePHYReg43;
    QRX_U32 PCIePHYReg44;
    QRX_U32 PCIePHYReg45;
    QRX_U32 PCIePHYReg46;
    QRX_U32 PCIePHYReg47;
    QRX_U32 PCIePHYReg48;
    QRX_U32 PCIePHYReg49;
    QRX_U32 PCIePHYReg50;
    QRX_U32 PCIePHYReg51;
    QRX_U32 PCIePHYReg52;
    QRX_U32 PCIePHYReg53;
    QRX_U32 PCIePHYReg54;
    QRX_U32 PCIePHYReg55;
    QRX_U32 PCIePHYReg56;
    QRX_U32 PCIePHYReg57;
    EomPhCtrl_t eomPhCtrl;
    QRX_U32 ImpedanceCalibrationResult20;
    QRX_U32 ImpedanceCalibrationResult21;
    QRX_U32 F1CalibrationResult;
    EomCalCtrl0_t eomCalCtrl0;
    EomCalCtrl1_t eomCalCtrl1;
};
static_assert(sizeof(PciePhy_t) == 0x2A0);
static_assert(offsetof(PciePhy_t, Chip_id) == 0x000);
static_assert(offsetof(PciePhy_t, powerAndPllCtrl) == 0x004);
static_assert(offsetof(PciePhy_t, dfeUpdateCtrl) == 0x020);
static_assert(offsetof(PciePhy_t, eomCircuitCtrl) == 0x09C);
static_assert(offsetof(PciePhy_t, eomSet1Ctrl0) == 0x0A0);
static_assert(offsetof(PciePhy_t, eomSet1Ctrl1) == 0x0A4);
static_assert(offsetof(PciePhy_t, eomSet1PopCntr0) == 0x0A8);
static_assert(offsetof(PciePhy_t, eomSet1PopCntr1) == 0x0AC);
static_assert(offsetof(PciePhy_t, eomSet1PopCntr2) == 0x0B0);
static_assert(offsetof(PciePhy_t, eomSet1PopCntr3) == 0x0B4);
static_assert(offsetof(PciePhy_t, eomSet1ThrCntr0) == 0x0B8);
static_assert(offsetof(PciePhy_t, eomSet1ThrCntr1) == 0x0BC);
static_assert(offsetof(PciePhy_t, eomSet1ThrCntr2) == 0x0C0);
static_assert(offsetof(PciePhy_t, eomSet1ThrCntr3) == 0x0C4);
static_assert(offsetof(PciePhy_t, eomSet1SampleCntr0) == 0x0C8);
static_assert(offsetof(PciePhy_t, eomSet1SampleCntr1) == 0x0CC);
static_assert(offsetof(PciePhy_t, eomSet1SampleCntr2) == 0x0D0);
static_assert(offsetof(PciePhy_t, eomSet1SampleCntr3) == 0x0D4);
static_assert(offsetof(PciePhy_t, eomSet1ErrCntr0) == 0x0D8);
static_assert(offsetof(PciePhy_t, eomSet1ErrCntr1) == 0x0DC);
static_assert(offsetof(PciePhy_t, eomSet1ErrCntr2) == 0x0E0);
static_assert(offsetof(PciePhy_t, eomSet1ErrCntr3) == 0x0E4);
static_assert(offsetof(PciePhy_t, _150MClockCtrl0) == 0x12C);
static_assert(offsetof(PciePhy_t, RxCtrl1) == 0x140);
static_assert(offsetof(PciePhy_t, PCIePHYReg0) == 0x1A4);
static_assert(offsetof(PciePhy_t, PCIePHYReg8) == 0x1C0);
static_assert(offsetof(PciePhy_t, eomPhCtrl) == 0x288);
static_assert(offsetof(PciePhy_t, F1CalibrationResult) == 0x294);
static_assert(offsetof(PciePhy_t, eomCalCtrl0) == 0x298);
static_assert(offsetof(PciePhy_t, eomCalCtrl1) == 0x29C);
