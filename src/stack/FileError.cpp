// Reporting file errors: the error codes are string ids at once.
#include "messages/Alert.h"
#include "messages/StringIds.h"
#include "stack/StackFiles.h"

namespace {
inline constexpr int32_t kFileErrors[] = {2680, 2681, 2682, 2683, 2684, 2685, 2686, 2687,
                                          -2688, 2689, 2689, 2691, 2692, 2693};
}  // namespace

void ShowFileError(int32_t code) {
    if (code == kResultOk || code == kResultReported) return;
    for (int32_t known : kFileErrors) {
        if (known != code) continue;
        // -2688's low 16 bits are no string id: its alert comes out empty, so nothing shows.
        if (code > 0) Alert(code);
        return;
    }
    Alert(kAlertSomeError);
}
