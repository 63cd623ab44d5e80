// The scan of the process arguments, start-up, and one-command mode.
#include "cli/qxsetup/startup.h"

#include <strings.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "api/src/interface/adapter.h"
#include "api/src/interface/api.h"
#include "api/src/interface/globals.h"
#include "cli/Public/common.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/report.h"
#include "cli/qxsetup/shell.h"

QRX_U8 gSysDenied = 0;

namespace qrx {

namespace {

// Opens the file behind the first -output. The word itself becomes short option 1 with an attached argument.
void takeOutput(Arguments& arguments)
{
    for (int i = 1; i + 2 <= arguments.argc; ++i) {
        if (strcasecmp(arguments.argv[i], "-output") != 0) {
            continue;
        }
        const char* name = arguments.argv[i + 1];
        FILE* output = std::fopen(name, "ab");
        if (output == nullptr) {
            std::fprintf(stderr, "qrx_cli: cannot open '%s': %s\n", name, std::strerror(errno));
            arguments.failed = true;
            return;
        }
        (void)std::setvbuf(output, nullptr, _IOLBF, BUFSIZ);  // in step with what goes to standard output and error
        stream = output;
        arguments.argv[i][1] = '\x01';
        arguments.outPut = true;
        return;
    }
}

// The last word that holds --vid=0x wins.
void takeVendorId(Arguments& arguments, QRX_U16* pvid)
{
    for (int i = 1; i < arguments.argc; ++i) {
        const char* word = arguments.argv[i];
        if (std::strstr(word, "--vid=0x") != nullptr || std::strstr(word, "--VID=0x") != nullptr) {
            arguments.vid = static_cast<QRX_U16>(strtol32(std::strstr(word, "0x"), 16));
            *pvid = arguments.vid;
        }
    }
}

// Fills g_pAdInfos. A controller that cannot be read keeps a record of zeros. False when memory is short.
bool readControllers()
{
    const std::size_t size = gNumAdaptersFound * sizeof(NVME_Adapter_Info);
    g_pAdInfos = static_cast<PNVME_Adapter_Info>(std::malloc(size));
    if (g_pAdInfos == nullptr) {
        std::fputs("qrx_cli: out of memory\n", stderr);
        return false;
    }
    std::memset(g_pAdInfos, 0, size);
    for (int index = 0; index < gNumAdaptersFound; ++index) {
        if (QRX_Adapter_GetSimpleInfo(static_cast<QRX_U8>(index), &g_pAdInfos[index]) != 0 && dbg_enable != 0) {
            print("\nUnable to get info of NVMe Controller %d\n", index + idBase());
        }
    }
    return true;
}

void tellNoController()
{
    gSysDenied = QRX_IsSysDenied();
    print(gSysDenied != 0 ? "NVMe Controller is found, but need administrator permission.\n"
                          : "No NVMe Controller is found.\n");
}

// Turns the device number of the command line into the current controller. False when there is no such controller.
bool selectController(const Arguments& arguments)
{
    int number = arguments.adapterId;
    int index = 0;
    if (!SetAdapterIdFromDeviceName(&number, &index)) {
        print("Adapter ID %d is not exist.\n", arguments.adapterId);
        return false;
    }
    gCurrentAdapter = static_cast<QRX_U8>(index);
    return true;
}

// Says so when standard output could not take everything.
void tellOfLostOutput()
{
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::fputs("qrx_cli: cannot write all of the output\n", stderr);
    }
}

int runCommand(const Arguments& arguments, const Host& host)
{
    const int first = arguments.vid != 0 ? 2 : 1;
    char noWord[] = "";
    char* none[] = {noWord};
    const bool missing = arguments.argc <= first;
    char** words = missing ? none : arguments.argv + first;
    const int count = missing ? 1 : arguments.argc - first;

    if (gNumAdaptersFound == 0 && std::strcmp(words[0], "help") != 0 && std::strcmp(words[0], "version") != 0) {
        return 0;
    }
    const int result = runWords(count, words);
    host.final();
    freeControllers();
    closeStream();
    return result;
}

}  // namespace

int runWords(int argc, char** argv)
{
    try {
        return cmdDispatcher(argc, argv);
    } catch (const std::bad_alloc&) {
        std::fputs("qrx_cli: out of memory\n", stderr);
        return 1;
    }
}

void freeControllers()
{
    std::free(g_pAdInfos);
    g_pAdInfos = nullptr;
}

void closeStream()
{
    if (stream == nullptr || stream == stdout) {
        return;
    }
    const bool lost = std::ferror(stream) != 0;
    if (std::fclose(stream) != 0 || lost) {
        std::fputs("qrx_cli: cannot write all of the output file\n", stderr);
    }
    stream = stdout;
}

Arguments scanArguments(int argc, char** argv)
{
    Arguments arguments;
    arguments.argc = argc;
    arguments.argv = argv;
    QRX_U16* pvid = QRX_Adapter_GetDeviceVID();
    *pvid = 0;
    stream = stdout;
    g_oneBaseMode = QRX_Adapter_GetOneBaseMode();

    if (argc > 1 && isNumber(argv[1])) {
        arguments.adapterId = strtol32(argv[1], 10);
        gCurrentAdapter = static_cast<QRX_U8>(arguments.adapterId);
        gSpecificAdapterFlag = 1;
        ++arguments.argv;
        --arguments.argc;
    }
    takeOutput(arguments);
    if (!arguments.failed) {
        takeVendorId(arguments, pvid);
    }
    return arguments;
}

bool wantsShell(const Arguments& arguments)
{
    if (arguments.outPut && arguments.argc <= 2) {  // never so: a file name stands behind -output
        return true;
    }
    if (!arguments.outPut && arguments.argc <= 1) {
        return true;
    }
    return gSpecificAdapterFlag == 0 && arguments.vid != 0;
}

int run(int argc, char** argv, const Host& host)
{
    const Arguments arguments = scanArguments(argc, argv);
    if (arguments.failed) {
        return 1;
    }
    pCmdTable = generalCmdTableV1;
    cmdTableSize = static_cast<QRX_U16>(generalCmdTableV1Size());
    // A start that lacks memory ends here: it may have missed a controller, so that an index would mean another one, or
    // a disk of the operating system.
    try {
        host.init();
    } catch (const std::bad_alloc&) {
        std::fputs("qrx_cli: out of memory\n", stderr);
        host.final();
        closeStream();
        return 1;
    }
    gNumAdaptersFound = static_cast<QRX_U8>(QRX_Adapter_GetCount());

    if (gNumAdaptersFound == 0) {
        tellNoController();
    } else {
        if (gSpecificAdapterFlag != 0 && !selectController(arguments)) {
            return 0;
        }
        if (!readControllers()) {
            host.final();
            closeStream();
            return 1;
        }
    }
    const int result = wantsShell(arguments) ? runShell(host) : runCommand(arguments, host);
    tellOfLostOutput();
    return result;
}

}  // namespace qrx
