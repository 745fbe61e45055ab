#include "messages/Alert.h"

#include <algorithm>
#include <cstring>

#include "base/StateRegistry.h"
#include "base/Windows1252.h"
#include "messages/StringIds.h"
#include "messages/StringTable.h"
#include "platform/Host.h"

namespace {

struct AlertState {
    bool advancedUser = false;
    int numbers[2] = {0, 0};
    // The hints shown in this run. Kept here rather than in a MemRef: nothing outside this file
    // reads it, and a handle would not survive the memory layer being started again.
    int32_t shownHints[kMaxShownHints] = {};
    int hintCount = 0;
    // The text of alert 0, zero-terminated.
    char buffer[kAlertBufferBytes] = {};
};

AlertState gAlerts;

bool IsHintShown(int32_t id) {
    return std::find(gAlerts.shownHints, gAlerts.shownHints + gAlerts.hintCount, id) !=
           gAlerts.shownHints + gAlerts.hintCount;
}

void RememberHint(int32_t id) {
    if (gAlerts.hintCount < kMaxShownHints) gAlerts.shownHints[gAlerts.hintCount++] = id;
}

// Puts the two alert numbers in for the first two "%d"; any later "%d" stays as it is.
std::string FormatNumbers(const std::string& text) {
    std::string out;
    int used = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if (used < 2 && text[i] == '%' && i + 1 < text.size() && text[i + 1] == 'd') {
            out += std::to_string(gAlerts.numbers[used++]);
            ++i;
        } else {
            out += text[i];
        }
    }
    return out;
}

bool TakesNumbers(int stringId) {
    return stringId == kAlertCardSize || stringId == kAlertMinimumSize;
}

// The text an alert id stands for: the alert buffer for 0, the string table otherwise.
std::string AlertSource(int stringId) {
    if (stringId == 0) return gAlerts.buffer;
    return GetString(stringId);
}

AlertPicture PictureOf(char digit, bool iconFlag) {
    if (!iconFlag) return AlertPicture::None;
    switch (digit) {
        case '1':
            return AlertPicture::Stop;
        case '3':
            return AlertPicture::Exclamation;
        case '2':  // the dog has two digits
        case '4':
            return AlertPicture::Dog;
        default:
            return AlertPicture::None;
    }
}

int16_t ButtonWidth(const std::string& label) {
    const size_t wanted = label.size() * kDialogBaseWidthPx + kAlertButtonPaddingPx;
    return static_cast<int16_t>(std::max<size_t>(kAlertButtonWidthPx, wanted));
}

}  // namespace

bool BuildAlertLayout(int stringId, const std::string& text, bool iconFlag, AlertLayout* out) {
    *out = AlertLayout{};
    out->stringId = stringId;
    const std::string source = text.substr(0, kAlertTextMaxBytes);
    if (source.size() < 2) return false;
    std::string rest = source.substr(2);
    if (TakesNumbers(stringId)) rest = FormatNumbers(rest);
    size_t cut = rest.find('~');
    if (cut == std::string::npos) return false;

    // Anything but a digit reads as a class of 10 or more, which is class 0.
    const unsigned sizeClass = static_cast<unsigned>(static_cast<unsigned char>(source[0])) - '0';
    out->sizeClass = sizeClass < 10 ? static_cast<int>(sizeClass) : 0;
    out->picture = PictureOf(source[1], iconFlag);
    out->text = rest.substr(0, cut);

    // One label after each "~", the fourth and later dropped.
    int defaultButton = 0;
    while (cut != std::string::npos && out->buttonCount < kAlertMaxButtons) {
        const size_t next = rest.find('~', cut + 1);
        std::string label =
            rest.substr(cut + 1, next == std::string::npos ? std::string::npos : next - cut - 1);
        ++out->buttonCount;
        if (!label.empty() && label[0] == '^') {
            label.erase(0, 1);
            if (defaultButton == 0) defaultButton = out->buttonCount;
        }
        out->buttons[out->buttonCount - 1].label = std::move(label);
        cut = next;
    }
    out->defaultButton = defaultButton ? defaultButton : 1;

    int16_t widths[kAlertMaxButtons] = {};
    int rowWidth =
        (kAlertFramePx + kAlertMarginPx) * 2 + kAlertButtonGapPx * (out->buttonCount - 1);
    for (int i = 0; i < out->buttonCount; ++i) {
        widths[i] = ButtonWidth(out->buttons[i].label);
        rowWidth += widths[i];
    }
    const AlertSizeClass& size = kAlertSizeClasses[out->sizeClass];
    out->width = static_cast<int16_t>(std::max<int>(rowWidth, size.minWidthPx));
    out->height = size.heightPx;
    out->frame = kAlertFramePx;
    const int16_t clientWidth = static_cast<int16_t>(out->width - 2 * kAlertFramePx);
    const int16_t clientHeight = static_cast<int16_t>(out->height - 2 * kAlertFramePx);

    // Buttons from the right, in the order of the string, on the bottom margin.
    const int16_t buttonBottom = static_cast<int16_t>(clientHeight - kAlertMarginPx);
    const int16_t buttonTop = static_cast<int16_t>(buttonBottom - kAlertButtonHeightPx);
    int16_t right = static_cast<int16_t>(clientWidth - kAlertMarginPx);
    for (int i = 0; i < out->buttonCount; ++i) {
        const int16_t left = static_cast<int16_t>(right - widths[i]);
        out->buttons[i].rect = {left, buttonTop, right, buttonBottom};
        right = static_cast<int16_t>(left - kAlertButtonGapPx);
    }

    int16_t textLeft = kAlertMarginPx;
    if (out->picture != AlertPicture::None) {
        out->pictureRect = {kAlertMarginPx, kAlertMarginPx, kAlertMarginPx + kAlertPictureSizePx,
                            kAlertMarginPx + kAlertPictureSizePx};
        textLeft = static_cast<int16_t>(out->pictureRect.right + kAlertPictureGapPx);
    }
    out->textRect = {textLeft, kAlertTextTopPx, static_cast<int16_t>(clientWidth - kAlertMarginPx),
                     static_cast<int16_t>(buttonTop - kAlertTextGapPx)};
    return true;
}

int16_t ShowMessage(int stringId, bool once, bool force, bool iconFlag) {
    if (!force) {
        if (gAlerts.advancedUser) return kAlertFirstButtonId;
        if (once) {
            if (IsHintShown(stringId)) return kAlertFirstButtonId;
            RememberHint(stringId);
        }
    }
    AlertLayout layout;
    if (!BuildAlertLayout(stringId, AlertSource(stringId), iconFlag, &layout))
        return kAlertFirstButtonId;
    const Host& host = GetHost();
    int pressed = host.ShowAlert(layout);
    // A host that answers with a button the box doesn't have gets the default one.
    if (pressed < 1 || pressed > layout.buttonCount) pressed = layout.defaultButton;
    return static_cast<int16_t>(kAlertFirstButtonId - 1 + pressed);
}

int Alert(int stringId) {
    return ShowMessage(stringId, false, true, true) - (kAlertFirstButtonId - 1);
}

int AlertText(const std::string& text) {
    const size_t length = std::min(text.size(), kAlertBufferBytes - 1);
    std::memcpy(gAlerts.buffer, text.data(), length);
    gAlerts.buffer[length] = '\0';
    return Alert(0);
}

void SetAlertNumbers(int first, int second) {
    gAlerts.numbers[0] = first;
    gAlerts.numbers[1] = second;
}

void SetAdvancedUser(bool advanced) {
    gAlerts.advancedUser = advanced;
}
bool IsAdvancedUser() {
    return gAlerts.advancedUser;
}

std::string AlertMessageText(int stringId) {
    const std::string text = AlertSource(stringId);
    AlertLayout layout;
    if (BuildAlertLayout(stringId, text, false, &layout)) return Utf8FromWindows1252(layout.text);
    return Utf8FromWindows1252(text);
}

void ReleaseAlertStore() {
    gAlerts.hintCount = 0;
}

void ResetAlertState() {
    gAlerts = AlertState{};
}

namespace {
[[maybe_unused]] const bool kStateRegistered = RegisterStateReset(Room::Messages, ResetAlertState);
}  // namespace
