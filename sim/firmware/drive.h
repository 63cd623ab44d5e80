// A physical disk behind the controller: a small NVMe SSD of its own, which hosts reach through the tunnel alone.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "api/src/interface/wire/pd.h"
#include "sim/firmware/background.h"
#include "sim/firmware/config_space.h"
#include "sim/firmware/nvme_function.h"

namespace qrx::sim {

// A namespace of a table that another controller left on a drive.
struct ForeignNamespace {
    QRX_U8 table = 0;
    QRX_U64 sectors = 1;
    std::array<QRX_U8, 16> nguid{};
    std::array<QRX_U8, 8> eui64{};

    friend bool operator==(const ForeignNamespace&, const ForeignNamespace&) = default;
};

// Of what it is as an NVMe device, `number`, `address` and `subnqn` mean nothing here, and `slot` is the root complex
// of the back end.
class Drive : public NvmeFunction {
public:
    // Namespaces that a drive can have.
    static constexpr std::size_t kNamespacesMax = 8;

    Drive();

    QRX_U16 id = 0;
    QRX_U32 sector_size = 512;  // bytes
    QRX_U64 sectors = 1875385008;
    QRX_U16 nsid = 1;   // namespace on the drive itself that the controller uses
    bool sata = false;  // it takes ATA commands, and none of NVMe
    bool failed = false;
    bool importable = false;
    ConfigSpace config_space;
    std::vector<ForeignNamespace> foreign_namespaces;
    std::optional<BackgroundActivity> activity;

    friend bool operator==(const Drive&, const Drive&) = default;

    [[nodiscard]] QRX_U64 bytes() const { return sectors * sector_size; }
    // `assigned`: a virtual disk uses it; `patrolled`: a media patrol of that virtual disk runs over it.
    [[nodiscard]] NVME_PD_Info record(bool assigned, bool patrolled) const;
    // Gives it, in place of all others, the one namespace over its whole size that a drive comes with.
    void make_default_namespace();

protected:
    [[nodiscard]] Capacity capacity() const override;
    [[nodiscard]] QRX_U32 max_namespaces() const override;
    void advance_back_end(Clock::Duration passed) override;
    [[nodiscard]] Clock::Duration next_change() const override;
    [[nodiscard]] bool attaches_namespaces() const override { return true; }
    Completion attach(const nvme_admin_cmd& command, std::span<const QRX_U8> data) override;
    [[nodiscard]] bool manages_namespaces() const override { return true; }
    Completion manage(const nvme_admin_cmd& command, std::span<const QRX_U8> data) override;
    [[nodiscard]] bool formats() const override { return true; }
    Completion format(const nvme_admin_cmd& command) override;

private:
    Completion create_namespace(const nvme_admin_cmd& command, std::span<const QRX_U8> data);
    Completion delete_namespace(QRX_U32 nsid);
};

}  // namespace qrx::sim
