// The scenarios that are built in, as texts of the form that a scenario file has.
//
// Background activities take a hundred hours and stand half a percent beyond a figure, so that what little time goes
// by while one looks at a scenario does not change what it shows.
//
// Where none is written, the mount table has the system on a disk that is no NVMe device.
#include <algorithm>
#include <array>

#include "sim/firmware/factory.h"

namespace qrx::sim {

namespace {

constexpr std::string_view kRaid = R"json({
  "controllers": [
    {
      "number": 0,
      "drives": [{"id": 0}, {"id": 1}, {"id": 2}, {"id": 3}],
      "virtual_disks": [
        {"id": 0, "raid_mode": "raid1", "members": [0, 1]},
        {"id": 1, "raid_mode": "jbod", "members": [2]}
      ],
      "namespaces": [{"nsid": 1, "parent_id": 0}, {"nsid": 2, "parent_id": 1}]
    }
  ]
}
)json";

constexpr std::string_view kJbof = R"json({
  "controllers": [
    {
      "number": 0,
      "adapter": {"features": ["import", "namespace", "dump", "nmic"], "sku": "D", "max_ns_per_vd": 8},
      "drives": [{"id": 0}, {"id": 1}, {"id": 2}, {"id": 3}],
      "namespaces": [
        {"nsid": 1, "parent_id": 0},
        {"nsid": 2, "parent_id": 1, "sectors": 937692504},
        {"nsid": 3, "parent_id": 1, "sectors": 937692504},
        {"nsid": 4, "parent_id": 2, "shared": true}
      ]
    }
  ]
}
)json";

constexpr std::string_view kPair = R"json({
  "mount_table": [
    "proc /proc proc rw,nosuid,nodev,noexec,relatime 0 0",
    "/dev/nvme1n1p2 / ext4 rw,relatime 0 0",
    "/dev/nvme1n1p1 /boot vfat rw,relatime 0 0"
  ],
  "controllers": [
    {
      "number": 1,
      "drives": [{"id": 0}, {"id": 1}, {"id": 2}, {"id": 3}],
      "virtual_disks": [{"id": 0, "raid_mode": "raid1", "members": [0, 1]}],
      "namespaces": [{"nsid": 1, "parent_id": 0}]
    },
    {
      "number": 3,
      "adapter": {"sku": "B", "stepping": ["stepping-b"], "stepping_number": 2, "cache": "on"},
      "drives": [{"id": 0}, {"id": 1}, {"id": 2}, {"id": 3}],
      "config": {"auto_rebuild": 0, "rate": "low"},
      "virtual_disks": [
        {"id": 0, "raid_mode": "raid10", "stripe": 512, "members": [0, 1, 2, 3], "activity":
          {"type": "media-patrol", "state": "running", "duration_ms": 360000000, "elapsed_ms": 153000000}}
      ],
      "namespaces": [{"nsid": 1, "parent_id": 0, "sectors": 1875385008}, {"nsid": 2, "parent_id": 0, "sectors": 1875385008}]
    }
  ]
}
)json";

constexpr std::string_view kDegraded = R"json({
  "controllers": [
    {
      "number": 0,
      "health": {"critical_warning": 4},
      "adapter": {"ports": 8, "max_vd": 8},
      "drives": [
        {"id": 0}, {"id": 1, "failed": true, "critical_warning": 4}, {"id": 2}, {"id": 4}, {"id": 5},
        {"id": 6, "critical_warning": 1}
      ],
      "virtual_disks": [
        {"id": 0, "raid_mode": "raid1", "status": "degraded", "members": [0, 1]},
        {"id": 1, "raid_mode": "raid1", "status": "degraded", "members": [2, 65535]},
        {"id": 2, "raid_mode": "raid1", "status": "rebuilding", "members": [4, 5], "activity":
          {"type": "rebuild", "state": "running", "duration_ms": 360000000, "elapsed_ms": 221400000}}
      ],
      "namespaces": [
        {"nsid": 1, "parent_id": 0}, {"nsid": 2, "parent_id": 1}, {"nsid": 3, "parent_id": 2}
      ]
    }
  ]
}
)json";

constexpr std::string_view kEmpty = R"json({
  "controllers": [{"number": 0, "adapter": {"sku": "A"}}]
}
)json";

constexpr std::string_view kForeign = R"json({
  "mount_table": [
    "proc /proc proc rw,nosuid,nodev,noexec,relatime 0 0",
    "/dev/nvme0n1p2 / ext4 rw,relatime 0 0",
    "/dev/nvme0n1p1 /boot vfat rw,relatime 0 0"
  ],
  "controllers": [
    {
      "number": 1,
      "drives": [{"id": 0}, {"id": 1}, {"id": 2}, {"id": 3}],
      "virtual_disks": [{"id": 0, "raid_mode": "raid1", "members": [0, 1]}],
      "namespaces": [{"nsid": 1, "parent_id": 0}]
    }
  ],
  "ssds": [{"number": 0, "serial": "OTHERMAKER0001", "namespaces": [{"nsid": 1}]}]
}
)json";

constexpr std::string_view kSriov = R"json({
  "controllers": [
    {
      "number": 0,
      "adapter": {"visible_vf_host0": 10, "visible_vf_host1": 4},
      "settings": {"sriov": true},
      "drives": [{"id": 0}, {"id": 1}, {"id": 2}, {"id": 3}],
      "virtual_disks": [{"id": 0, "raid_mode": "raid1", "members": [0, 1]}],
      "namespaces": [{"nsid": 1, "parent_id": 0, "shared": true}]
    }
  ]
}
)json";

constexpr std::string_view kNone = R"json({
  "controllers": []
}
)json";

constexpr std::string_view kGallery = R"json({
  "controllers": [
    {
      "number": 0,
      "controller_id": 1,
      "settings": {"sriov": true},
      "adapter": {
        "ports": 16, "max_pd": 3, "max_pd_per_vd": 8, "max_vd": 16, "cache": "on", "visible_vf_host1": 3,
        "stepping": ["stepping-a"], "stepping_number": 1,
        "raid_modes": ["raid0", "raid1", "jbod", "raid10", "raid5", "raid50", "raid6", "raid60"]
      },
      "drives": [
        {"id": 0}, {"id": 1}, {"id": 2}, {"id": 3}, {"id": 4}, {"id": 5}, {"id": 6}, {"id": 7}, {"id": 8},
        {"id": 9}, {"id": 10}, {"id": 11}, {"id": 12}, {"id": 13}, {"id": 14}, {"id": 15}, {"id": 16}, {"id": 17},
        {"id": 18}, {"id": 19}, {"id": 20}, {"id": 21}, {"id": 22}, {"id": 23}, {"id": 24}, {"id": 25}, {"id": 26},
        {"id": 27}, {"id": 28}, {"id": 29}, {"id": 30}, {"id": 31}, {"id": 32}, {"id": 33}, {"id": 34}, {"id": 35},
        {"id": 36}, {"id": 37}, {"id": 38}, {"id": 39}
      ],
      "virtual_disks": [
        {"id": 0, "name": "SIXTEEN_LETTERS_", "raid_mode": "raid0", "stripe": 256, "members": [0, 1], "activity":
          {"type": "quick-initialization", "state": "running", "duration_ms": 360000000, "elapsed_ms": 1800000}},
        {"id": 1, "raid_mode": "raid1", "status": "degraded", "stripe": 512, "members": [2, 65535]},
        {"id": 2, "raid_mode": "raid10", "status": "deleted", "stripe": 1024, "members": [4, 5, 6, 7]},
        {"id": 3, "raid_mode": "raid5", "status": "missing", "members": [65535, 65535, 65535]},
        {"id": 4, "raid_mode": "raid50", "status": "offline", "members": [8, 9, 10, 11, 12, 13]},
        {"id": 5, "raid_mode": "raid6", "status": "partially-optimal", "parity_disks": 2, "members": [14, 15, 16, 17]},
        {"id": 6, "raid_mode": "raid60", "status": "foreign", "parity_disks": 2,
          "members": [18, 19, 20, 21, 22, 23, 24, 25]},
        {"id": 7, "raid_mode": "jbod", "status": "importable", "importable": true, "members": [26]},
        {"id": 8, "raid_mode": 2, "status": "not-importable", "members": [27]},
        {"id": 9, "raid_mode": "raid1", "status": "initialization", "members": [28, 29], "activity":
          {"type": "initialization", "state": "running", "duration_ms": 360000000, "elapsed_ms": 27000000}},
        {"id": 10, "raid_mode": "raid1", "status": "rebuilding", "members": [30, 31], "activity":
          {"type": "rebuild", "state": "running", "duration_ms": 360000000, "elapsed_ms": 91800000}},
        {"id": 11, "raid_mode": "raid0", "status": "error-handling", "members": [32, 33], "activity":
          {"type": "sync", "state": "running", "duration_ms": 360000000, "elapsed_ms": 120600000}},
        {"id": 12, "name": "", "raid_mode": "raid0", "status": 99, "sector_size": 0, "members": [34], "activity":
          {"type": "migrate", "state": "running", "duration_ms": 360000000, "elapsed_ms": 174600000}},
        {"id": 13, "raid_mode": "raid1", "members": [35, 36], "activity":
          {"type": "media-patrol", "state": "running", "duration_ms": 360000000, "elapsed_ms": 181800000}},
        {"id": 14, "raid_mode": "raid0", "stripe": 64, "members": [37], "activity":
          {"type": "pd-media-patrol", "state": "running", "duration_ms": 360000000, "elapsed_ms": 239400000}},
        {"id": 15, "raid_mode": "raid0", "sector_size": 4096, "sectors": 234423126, "members": [38], "activity":
          {"type": "quick-initialization", "state": "paused", "duration_ms": 360000000, "elapsed_ms": 358200000}}
      ],
      "namespaces": [
        {"nsid": 1, "parent_id": 0}, {"nsid": 2, "parent_id": 1}, {"nsid": 3, "parent_id": 4, "active": false},
        {"nsid": 4, "parent_id": 10}, {"nsid": 5, "parent_id": 13, "valid": false, "waiting": true, "active": false},
        {"nsid": 6, "parent_id": 15}
      ]
    },
    {
      "number": 1,
      "controller_id": 5,
      "address": "0000:c3:02.1",
      "settings": {"sriov": true},
      "config": {"auto_rebuild": 0, "rate": 9},
      "adapter": {
        "ports": 6, "max_pd": 1, "max_vd": 6, "max_ns_per_vd": 1, "max_ns": 4, "sku": "B", "routing_number": true,
        "stepping": ["stepping-b"], "stepping_number": 3, "raid_modes": [], "background": [], "stripes": [],
        "features": ["raid"], "visible_vf_host0": 2, "visible_vf_host1": 2,
        "pcie": [
          {"type": "end-point", "id": 0, "speed": "2.5Gb/s", "width": 1},
          {"type": "end-point", "id": 1, "speed": "5Gb/s", "width": 2},
          {"type": "root-complex", "id": 0, "speed": "8Gb/s", "width": 4},
          {"type": "root-complex", "id": 1, "speed": "8Gb/s", "width": 8},
          {"type": "root-complex", "id": 2, "speed": 4, "width": 16},
          {"type": "root-complex", "id": 3, "speed": 0, "width": 0},
          {"type": 2, "id": 0, "speed": "8Gb/s", "width": 4},
          {"type": "root-complex", "id": 4, "speed": "8Gb/s", "width": 2},
          {"type": "root-complex", "id": 5, "speed": "8Gb/s", "width": 2},
          {"type": "root-complex", "id": 6, "speed": "8Gb/s", "width": 2},
          {"type": "root-complex", "id": 7, "speed": "8Gb/s", "width": 2},
          {"type": "root-complex", "id": 8, "speed": "8Gb/s", "width": 2},
          {"type": "root-complex", "id": 9, "speed": "8Gb/s", "width": 2},
          {"type": "root-complex", "id": 10, "speed": "8Gb/s", "width": 2},
          {"type": "root-complex", "id": 11, "speed": "8Gb/s", "width": 2},
          {"type": "root-complex", "id": 12, "speed": "8Gb/s", "width": 2}
        ]
      },
      "drives": [{"id": 0}, {"id": 1}, {"id": 2}, {"id": 3}, {"id": 4}, {"id": 5}],
      "virtual_disks": [
        {"id": 0, "raid_mode": "jbod", "members": [0], "activity":
          {"type": "initialization", "state": "paused", "duration_ms": 360000000, "elapsed_ms": 45000000}},
        {"id": 1, "raid_mode": "jbod", "members": [1], "activity":
          {"type": "rebuild", "state": "paused", "duration_ms": 360000000, "elapsed_ms": 84600000}},
        {"id": 2, "raid_mode": "jbod", "members": [2], "activity":
          {"type": "sync", "state": "paused", "duration_ms": 360000000, "elapsed_ms": 124200000}},
        {"id": 3, "raid_mode": "jbod", "members": [3], "activity":
          {"type": "migrate", "state": "paused", "duration_ms": 360000000, "elapsed_ms": 163800000}},
        {"id": 4, "raid_mode": "jbod", "members": [4], "activity":
          {"type": "media-patrol", "state": "paused", "duration_ms": 360000000, "elapsed_ms": 203400000}},
        {"id": 5, "raid_mode": "jbod", "members": [5], "activity":
          {"type": "pd-media-patrol", "state": "paused", "duration_ms": 360000000, "elapsed_ms": 243000000}}
      ]
    },
    {
      "number": 2,
      "subnqn": "\u0001",
      "adapter": {
        "ports": 9, "max_pd": 0, "sku": "D", "stepping": [], "stepping_number": 0, "cache": 7,
        "features": ["import", "namespace"], "flash_size": 0, "pcie": []
      },
      "drives": [
        {"id": 0, "failed": true},
        {"id": 1, "activity": {"type": "pd-media-patrol", "state": "running", "duration_ms": 360000000, "elapsed_ms": 289800000}},
        {"id": 2, "importable": true},
        {"id": 3, "critical_warning": 2},
        {"id": 4, "sector_size": 4096, "sectors": 234423126},
        {"id": 5, "sector_size": 0},
        {"id": 6, "model": "FORTY-LETTERS-WITHOUT-ONE-BLANK-IN-THEM-", "serial": "TWENTY-LETTERS-HERE-", "firmware": "EIGHT-LT"},
        {"id": 7, "model": "   Three Blanks Ahead", "serial": "  TWO-AHEAD", "firmware": " ONE"},
        {"id": 8, "model": "                Sixteen Ahead", "serial": "", "firmware": "", "slot": 300, "nsid": 65535}
      ],
      "namespaces": [
        {"nsid": 1, "parent_id": 4},
        {"nsid": 2, "parent_id": 6, "active": false},
        {"nsid": 3, "parent_id": 7, "valid": false, "waiting": true, "active": false},
        {"nsid": 4, "parent_id": 3, "nguid": "00000000000000000000000000000000", "eui64": "0000000000000000"}
      ]
    },
    {
      "number": 3,
      "subnqn": "\u0001",
      "adapter": {"ports": 2, "max_pd": 1, "sku": "A", "stepping": [], "features": [], "max_ns": 0}
    }
  ]
}
)json";

constexpr std::string_view kLab = R"json({
  "controllers": [
    {
      "number": 0,
      "config": {"auto_rebuild": 0, "rate": "high"},
      "adapter": {
        "ports": 16, "max_pd_per_vd": 8,
        "raid_modes": ["raid0", "raid1", "jbod", "raid10", "raid5", "raid50", "raid6", "raid60"]
      },
      "drives": [
        {"id": 0}, {"id": 1}, {"id": 2}, {"id": 3}, {"id": 4}, {"id": 5}, {"id": 6}, {"id": 7}, {"id": 8},
        {"id": 9, "model": "QRX Lab SSD 480GB", "sectors": 937703088},
        {"id": 10, "sector_size": 4096, "sectors": 234423126},
        {"id": 11, "failed": true, "critical_warning": 4}
      ]
    }
  ]
}
)json";

constexpr std::string_view kImportable = R"json({
  "controllers": [
    {
      "number": 0,
      "adapter": {"ports": 8},
      "drives": [
        {"id": 0}, {"id": 1}, {"id": 2, "importable": true}, {"id": 3, "importable": true}, {"id": 4}
      ],
      "virtual_disks": [
        {"id": 0, "raid_mode": "raid1", "members": [0, 1]},
        {"id": 1, "name": "FROM_ELSEWHERE", "raid_mode": "raid1", "status": "importable", "importable": true,
          "members": [2, 3]},
        {"id": 2, "raid_mode": "jbod", "status": "foreign", "members": [4]}
      ],
      "namespaces": [
        {"nsid": 1, "parent_id": 0},
        {"nsid": 2, "parent_id": 1, "valid": false, "active": false, "shared": true}
      ]
    },
    {
      "number": 1,
      "adapter": {"features": ["import", "namespace", "dump", "nmic"], "sku": "D", "max_ns_per_vd": 8},
      "drives": [
        {"id": 0},
        {"id": 1, "importable": true, "foreign_namespaces": [
          {"table": 0, "sectors": 937692504}, {"table": 0, "sectors": 468846252}, {"table": 1, "sectors": 468846252}
        ]},
        {"id": 2, "foreign_namespaces": [{"table": 0}]},
        {"id": 3}
      ],
      "namespaces": [{"nsid": 1, "parent_id": 0}]
    }
  ]
}
)json";

constexpr std::string_view kBoot = R"json({
  "mount_table": [
    "proc /proc proc rw,nosuid,nodev,noexec,relatime 0 0",
    "/dev/nvme0n1p2 / ext4 rw,relatime 0 0",
    "/dev/nvme0n1p1 /boot vfat rw,relatime 0 0"
  ],
  "controllers": [
    {
      "number": 0,
      "drives": [{"id": 0}, {"id": 1}, {"id": 2}, {"id": 3}],
      "virtual_disks": [
        {"id": 0, "raid_mode": "raid1", "members": [0, 1]},
        {"id": 1, "raid_mode": "jbod", "members": [2]}
      ],
      "namespaces": [{"nsid": 1, "parent_id": 0}, {"nsid": 2, "parent_id": 1}]
    }
  ]
}
)json";

constexpr std::string_view kSeasoned = R"json({
  "controllers": [
    {
      "number": 0,
      "drives": [{"id": 0}, {"id": 1}],
      "virtual_disks": [{"id": 0, "raid_mode": "raid1", "members": [0, 1]}],
      "namespaces": [{"nsid": 1, "parent_id": 0}],
      "event_ring": {"history": 1500}
    }
  ]
}
)json";

constexpr std::string_view kScarred = R"json({
  "controllers": [
    {
      "number": 0,
      "settings": {"debug_dump": true},
      "drives": [{"id": 0}, {"id": 1}],
      "virtual_disks": [{"id": 0, "raid_mode": "raid1", "members": [0, 1]}],
      "namespaces": [{"nsid": 1, "parent_id": 0}],
      "event_ring": {
        "sequence": 9,
        "page": 1,
        "pages": [
          {
            "lines": [
              "[SEQ]01[TIME]12[MSG]VD0_CREATED_NOTIFY",
              "[SEQ]02[TIME]12[MSG",
              "[SEQ]03[TIME]15[MSG]NS1_CREATED_NOTIFY",
              "[SEQ]4444444444[TIME]20[MSG]NS1_ATTACH_NOTIFY",
              "[SEQ]05[TIME]30[MSG]PD1_SETDOWN_\u001b[31mCRITICAL",
              "[SEQ]06[TIME]30[MSG]VD0_DEGRADED_WARNINGWARNINGWARNINGWARNINGWARNING",
              "?"
            ]
          },
          {
            "lines": [
              "",
              "[SEQ]08[TIME]1764547200[MSG]PD1_ONLINE_NOTIFY",
              "\u0007\u0007\u0007",
              "[SEQ]09[TIME]1764547201[MSG]VD0_REBUILD_START_NOTIFY\u0000[SEQ]10"
            ]
          }
        ]
      },
      "spi_log": {"lines": ["[      1.000] boot", "", "\u0000\u0000[      2.000] \u001b[2Jcleared"]},
      "diagnostics": {
        "vdm_on": true,
        "vdm_log": {"lines": ["[      1.000] nvme-mi-send, 1040 bytes", "", "\u0000[      2.000] \u001b[2Jcleared"]}
      }
    }
  ]
}
)json";

constexpr std::string_view kEyeClosed = R"json({
  "controllers": [
    {
      "number": 0,
      "drives": [{"id": 0}, {"id": 1}],
      "interfaces": [{"id": 2, "eye": {"width": 0}}]
    }
  ]
}
)json";

constexpr std::string_view kEyeAtZero = R"json({
  "controllers": [
    {
      "number": 0,
      "drives": [{"id": 0}, {"id": 1}],
      "interfaces": [{"id": 2, "eye": {"center": 16, "width": 48}}]
    }
  ]
}
)json";

constexpr std::string_view kEyeNarrow = R"json({
  "controllers": [
    {
      "number": 0,
      "drives": [{"id": 0}, {"id": 1}],
      "interfaces": [{"id": 2, "eye": {"center": 96, "width": 12, "jitter": 5}}]
    }
  ]
}
)json";

constexpr std::string_view kEyePastRange = R"json({
  "controllers": [
    {
      "number": 0,
      "drives": [{"id": 0}, {"id": 1}],
      "interfaces": [{"id": 2, "eye": {"center": 2540}}]
    }
  ]
}
)json";

constexpr std::string_view kEyeStuck = R"json({
  "controllers": [
    {
      "number": 0,
      "drives": [{"id": 0}, {"id": 1}],
      "interfaces": [{"id": 2, "ready_after": 255}, {"id": 3, "measured_after": 255}]
    }
  ]
}
)json";

constexpr std::string_view kLinks = R"json({
  "controllers": [
    {
      "number": 0,
      "adapter": {
        "ports": 13,
        "pcie": [
          {"type": "end-point", "id": 0, "speed": "8Gb/s", "width": 8},
          {"type": "root-complex", "id": 0, "speed": "8Gb/s", "width": 8},
          {"type": "root-complex", "id": 1, "speed": "5Gb/s", "width": 4},
          {"type": "root-complex", "id": 2, "speed": "2.5Gb/s", "width": 2},
          {"type": "root-complex", "id": 3, "speed": 4, "width": 16},
          {"type": "root-complex", "id": 4, "speed": "8Gb/s", "width": 4},
          {"type": "root-complex", "id": 5, "speed": "8Gb/s", "width": 4},
          {"type": "root-complex", "id": 6, "speed": "8Gb/s", "width": 4},
          {"type": "root-complex", "id": 7, "speed": "8Gb/s", "width": 4},
          {"type": "root-complex", "id": 8, "speed": "8Gb/s", "width": 4},
          {"type": "root-complex", "id": 9, "speed": "8Gb/s", "width": 4},
          {"type": "root-complex", "id": 10, "speed": "8Gb/s", "width": 4},
          {"type": "root-complex", "id": 11, "speed": "8Gb/s", "width": 4}
        ]
      },
      "drives": [
        {"id": 0, "config_space": {"correctable": 8193, "uncorrectable": 1310720}},
        {"id": 1},
        {"id": 2, "config_space": {"aer": false}},
        {"id": 3},
        {"id": 4, "config_space": {"express": false}},
        {"id": 5, "config_space": {"answer": "timeout"}},
        {"id": 6, "config_space": {"answer": "unsupported-request"}},
        {"id": 7, "config_space": {"answer": "retry"}},
        {"id": 8, "config_space": {"answer": "abort"}},
        {"id": 9, "config_space": {"answer": "none"}},
        {"id": 10, "failed": true}
      ]
    }
  ]
}
)json";

constexpr auto kScenarios = std::to_array<Scenario>({
    {"raid", "one controller, four drives, a RAID1 and a JBOD virtual disk with a namespace each, one drive free",
     kRaid},
    {"jbof", "a controller without RAID: namespaces lie on its four drives", kJbof},
    {"pair", "two controllers, at /dev/nvme1 and /dev/nvme3; the first holds /boot", kPair},
    {"degraded", "a RAID1 virtual disk with a failed drive, another with a missing one, a third in rebuild", kDegraded},
    {"empty", "a controller with no drives", kEmpty},
    {"foreign", "an SSD of another maker at /dev/nvme0, with /boot on it, and the controller at /dev/nvme1", kForeign},
    {"sriov", "virtual functions are visible, some of them past function 7", kSriov},
    {"lab",
     "no virtual disk yet, every RAID mode, twelve drives: nine alike, one smaller, one of 4K sectors, one failed",
     kLab},
    {"importable", "a foreign virtual disk at /dev/nvme0, foreign namespace tables at /dev/nvme1 without RAID",
     kImportable},
    {"boot", "the first of two virtual disks holds /boot, at /dev/nvme0n1p1", kBoot},
    {"seasoned", "a controller of long service: its event ring has wrapped", kSeasoned},
    {"scarred", "some lines of the event ring, of the debug console and of the VDM log are damaged", kScarred},
    {"links", "drives behind links of each speed and width, and some whose configuration space cannot be read", kLinks},
    {"eye-closed", "no eye at all on the link of drive 0", kEyeClosed},
    {"eye-at-zero", "the eye of drive 0's link lies around phase 0", kEyeAtZero},
    {"eye-narrow", "the eye of drive 0's link is too narrow to be taken for one", kEyeNarrow},
    {"eye-past-range", "the eye of drive 0's link ends beyond the phases that are searched", kEyePastRange},
    {"eye-stuck",
     "eye monitors that do not get ready: that of drive 0's link when it is switched on, that of drive 1's while it "
     "measures",
     kEyeStuck},
    {"none", "no controller at all", kNone},
    {"gallery", "four controllers that show what the others do not: every status, mode, activity and limit", kGallery},
});

}  // namespace

std::span<const Scenario> scenarios()
{
    return kScenarios;
}

Result<std::unique_ptr<Machine>> make_scenario(std::string_view name)
{
    const auto* const found = std::find_if(kScenarios.begin(), kScenarios.end(),
                                           [name](const Scenario& scenario) { return scenario.name == name; });
    if (found != kScenarios.end()) {
        return load_machine(found->text, found->name);
    }
    std::string text = "unknown scenario '" + std::string(name) + "'; allowed are";
    for (const Scenario& scenario : kScenarios) {
        text += &scenario == kScenarios.begin() ? " '" : ", '";
        text += scenario.name;
        text += '\'';
    }
    return Failure{text};
}

}  // namespace qrx::sim
