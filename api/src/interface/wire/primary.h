// Primary Controller Capabilities, of the NVMe standard: the Identify page of a controller that has virtual functions.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/types.h"

namespace qrx {

inline constexpr QRX_U8 kIdentifyPrimary = 20;  // CNS

}  // namespace qrx

struct _Prim_cntl_cap {
    QRX_U16 cntlid;
    QRX_U16 portid;
    QRX_U8 crt;  // bit 0: VQ resources, bit 1: VI resources can be moved
    QRX_U8 rsvd5[27];
    QRX_U32 vqfrt;   // VQ resources: flexible in all,
    QRX_U32 vqrfa;   // assigned to secondary controllers,
    QRX_U16 vqrfap;  // assigned to the primary one,
    QRX_U16 vqprt;   // private to it,
    QRX_U16 vqfrsm;  // most for a secondary one,
    QRX_U16 vqgran;  // and their preferred granularity
    QRX_U8 rsvd48[16];
    QRX_U32 vifrt;  // VI resources, likewise
    QRX_U32 virfa;
    QRX_U16 virfap;
    QRX_U16 viprt;
    QRX_U16 vifrsm;
    QRX_U16 vigran;
    QRX_U8 rsvd80[4016];
};
static_assert(sizeof(_Prim_cntl_cap) == 4096);
static_assert(offsetof(_Prim_cntl_cap, crt) == 4);
static_assert(offsetof(_Prim_cntl_cap, vqfrt) == 32);
static_assert(offsetof(_Prim_cntl_cap, vqgran) == 46);
static_assert(offsetof(_Prim_cntl_cap, vifrt) == 64);
static_assert(offsetof(_Prim_cntl_cap, vigran) == 78);
