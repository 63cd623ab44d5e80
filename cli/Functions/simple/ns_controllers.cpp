#include "cli/Functions/simple/ns_controllers.h"

#include "api/src/interface/agent.h"
#include "api/src/interface/globals.h"
#include "cli/Functions/simple/ns_actions.h"
#include "cli/Public/frame/list.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/option_scan.h"
#include "cli/Public/frame/report.h"

namespace qrx::ns {
namespace {

constexpr QRX_U8 kNamespaceAttachment = 21;
constexpr QRX_U32 kSelectAttach = 0;  // CDW10
constexpr QRX_U32 kSelectDetach = 1;

}  // namespace

bool readShifted(const char* word, int base, int& field, const char* notNumber, const char* negative)
{
    if (!take(readNumber(word), field)) {
        return complain("%s", notNumber);
    }
    field -= base;
    return field >= 0 || complain(negative, word);
}

bool addControllers(std::string_view list, int base, NVME_NS_ATTACHMENT_PRP& controllers)
{
    return eachElement(list, [&](const char* element) {
        int id = 0;
        if (!readShifted(element, base, id, "-d : controller ids should be a number\n", kInvalidController)) {
            return false;
        }
        const auto controller = narrowId(id);
        if (!controller) {
            return complain(kInvalidController, element);
        }
        if (controllers.NumOfIdentifiers == kControllerListMax) {
            return complain("-d : at most %zu controller ids\n", kControllerListMax);
        }
        controllers.Identifier[controllers.NumOfIdentifiers++] = *controller;
        return true;
    });
}

bool hasAttachment()
{
    return _getSupportNSStatus() != 0 || complain("Namespace management and attachment is not support.\n");
}

int sendAttachment(bool attaches, QRX_U32 nsid, NVME_NS_ATTACHMENT_PRP& controllers)
{
    QRX_U32 cdw10 = attaches ? kSelectAttach : kSelectDetach;
    return static_cast<int>(QRX_Adapter_Admin(gCurrentAdapter, kNamespaceAttachment, nsid, &cdw10, 1, &controllers,
                                              sizeof(controllers), nullptr, 0));
}

}  // namespace qrx::ns
