// A JBOF controller for the commands of namespaces, and their pages.
#pragma once

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "cli/Public/utility.h"
#include "tests/unit/cli/run_unlisted.h"
#include "tests/unit/cli/storage_fixture.h"
#include "tests/unit/support/libc.h"

namespace qrx::test {

class IoTest : public StorageTest {
protected:
    IoTest() { runAsJbof(); }

    // An I/O command to namespace `nsid` with CDW10 to CDW15.
    static test::Command io(QRX_U8 opcode, QRX_U32 nsid, std::vector<QRX_U32> cdw)
    {
        return test::Command::nvm(opcode, nsid, std::move(cdw)).on(1);
    }
    [[nodiscard]] std::string fileOf(const Bytes& bytes) const { return scratch.file("in", textOf(bytes)); }
    static std::string textOf(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }
    static std::string contentOf(const std::string& path)
    {
        std::ostringstream text;
        text << std::ifstream(path, std::ios::binary).rdbuf();
        return text.str();
    }

    Scratch scratch;
};

}  // namespace qrx::test
