#include "ui/FindDialog.h"

#include "gfx/Draw.h"
#include "messages/Alert.h"
#include "messages/StringIds.h"
#include "text/Font.h"
#include "ui/AlertDraw.h"
#include "ui/ModalLoop.h"

namespace {

inline constexpr int32_t kBoxWidth = 330;
inline constexpr int32_t kBoxHeight = 200;
inline constexpr int32_t kMargin = 12;
inline constexpr int32_t kRowHeight = 18;

// The controls of the box; their rectangles are relative to its corner.
enum Control { kNone, kOk, kCancel, kAllFields, kEditable, kReadOnly, kMatchCase, kWrap };

struct ControlRow {
    Control control;
    Rect rect;
    const char* label;  // "&" marks the letter that is underlined
};
const ControlRow kControls[] = {
    {kAllFields, {kMargin + 8, 86, 170, 86 + kRowHeight}, "&All fields"},
    {kEditable, {kMargin + 8, 86 + kRowHeight, 170, 86 + 2 * kRowHeight}, "&Editable fields"},
    {kReadOnly, {kMargin + 8, 86 + 2 * kRowHeight, 170, 86 + 3 * kRowHeight}, "&Read-only fields"},
    {kMatchCase, {184, 86, kBoxWidth - kMargin, 86 + kRowHeight}, "&Case Sensitive"},
    {kWrap, {184, 86 + kRowHeight, kBoxWidth - kMargin, 86 + 2 * kRowHeight}, "&Wrap around search"},
    {kOk, {kBoxWidth - 2 * 75 - kMargin - 10, kBoxHeight - 35, kBoxWidth - 75 - kMargin - 10, kBoxHeight - 12}, "OK"},
    {kCancel, {kBoxWidth - 75 - kMargin, kBoxHeight - 35, kBoxWidth - kMargin, kBoxHeight - 12}, "Cancel"},
};
const Rect kEditRect{kMargin, 44, kBoxWidth - kMargin, 66};
const Rect kGroupRect{kMargin, 76, 176, 86 + 3 * kRowHeight + 6};

struct FindSession {
    std::string text;
    uint16_t options = kFindAllFields;
    Control answer = kNone;
    DialogPress press;
};

uint16_t RadioBit(Control c) {
    return c == kAllFields ? kFindAllFields : c == kEditable ? kFindEditableFields : kFindReadOnlyFields;
}

Control ControlAt(const HostEvent& event, const Rect& box) {
    for (const ControlRow& row : kControls) {
        if (OffsetRect(row.rect, box.left, box.top).Contains(event.x, event.y)) return row.control;
    }
    return kNone;
}

// A label without its "&", the marked letter underlined.
void DrawLabel(Surface& window, const Rect& r, int32_t x, const char* label) {
    std::string shown;
    size_t marked = std::string::npos;
    for (const char* p = label; *p; ++p) {
        if (*p == '&' && p[1]) {
            marked = shown.size();
            continue;
        }
        shown += *p;
    }
    DrawDialogLine(window, r, x, shown, kBlack);
    if (marked == std::string::npos) return;
    const TextFont font = AlertFont();
    const TextMetrics m = GetTextMetrics(font);
    const int32_t left = x + MeasureText(font, shown.substr(0, marked));
    const int32_t width = MeasureText(font, shown.substr(marked, 1));
    const int32_t underline = r.top + (r.Height() - m.lineHeight) / 2 + m.ascent + 1;
    FillRect(window, r, {left, underline, left + width, underline + 1}, kBlack);
}

void DrawChoice(Surface& window, const Rect& box, const ControlRow& row, bool on, bool radio) {
    const Rect r = OffsetRect(row.rect, box.left, box.top);
    const Rect mark{r.left, r.top + 3, r.left + 12, r.top + 15};
    FillRect(window, box, mark, kWhite);
    FrameRect(window, box, mark, {kBlack, 1, PenMode::Copy});
    if (on && radio) FillRect(window, box, InflateRect(mark, -3, -3), kBlack);
    if (on && !radio) {
        // A tick of two strokes.
        for (int32_t i = 0; i < 3; ++i) FillRect(window, box, {mark.left + 3 + i, mark.top + 5 + i, mark.left + 4 + i, mark.top + 7 + i}, kBlack);
        for (int32_t i = 0; i < 4; ++i) FillRect(window, box, {mark.left + 6 + i, mark.top + 6 - i, mark.left + 7 + i, mark.top + 8 - i}, kBlack);
    }
    DrawLabel(window, r, mark.right + 5, row.label);
}

void DrawSession(void* context, Surface& window, const Rect& box) {
    const FindSession& s = *static_cast<FindSession*>(context);
    FillRect(window, box, box, kDialogFaceColour);
    FrameRect(window, box, box, {kBlack, 1, PenMode::Copy});
    FrameRect(window, box, InflateRect(box, -3, -3), {kBlack, 1, PenMode::Copy});
    DrawDialogLine(window, OffsetRect({kMargin, 6, kBoxWidth - kMargin, 24}, box.left, box.top), box.left + kMargin,
                   "Find Text", kBlack);
    DrawLabel(window, OffsetRect({kMargin, 24, kBoxWidth - kMargin, 42}, box.left, box.top), box.left + kMargin,
              "&Search for:");
    const Rect edit = OffsetRect(kEditRect, box.left, box.top);
    FillRect(window, box, edit, kWhite);
    FrameRect(window, box, edit, {kBlack, 1, PenMode::Copy});
    // A long text shows its end, where the typing is.
    const TextFont font = AlertFont();
    std::string shown = s.text;
    while (!shown.empty() && MeasureText(font, shown) > edit.Width() - 10) shown.erase(0, 1);
    const Rect inside = InflateRect(edit, -2, -2);
    DrawDialogLine(window, inside, edit.left + 4, shown, kBlack);
    const int32_t caret = edit.left + 4 + MeasureText(font, shown);
    FillRect(window, inside, {caret, inside.top + 2, caret + 1, inside.bottom - 2}, kBlack);
    const Rect group = OffsetRect(kGroupRect, box.left, box.top);
    FrameRect(window, box, group, {kBlack, 1, PenMode::Copy});
    // The group's name stands in a gap of its frame.
    const Rect label{group.left + 6, group.top - 8, group.left + 10 + MeasureText(font, "Search in"), group.top + 8};
    FillRect(window, box, label, kDialogFaceColour);
    DrawDialogLine(window, label, label.left + 2, "Search in", kBlack);
    for (const ControlRow& row : kControls) {
        switch (row.control) {
            case kAllFields:
            case kEditable:
            case kReadOnly: DrawChoice(window, box, row, (s.options & RadioBit(row.control)) != 0, true); break;
            case kMatchCase: DrawChoice(window, box, row, (s.options & kFindMatchCase) != 0, false); break;
            case kWrap: DrawChoice(window, box, row, (s.options & kFindWrap) != 0, false); break;
            default:
                DrawDialogButton(window, box, OffsetRect(row.rect, box.left, box.top), row.label, row.control == kOk,
                                 s.press.pressed == row.control);
        }
    }
}

void Choose(FindSession& s, Control c) {
    switch (c) {
        case kAllFields:
        case kEditable:
        case kReadOnly:
            s.options = static_cast<uint16_t>((s.options & ~(kFindAllFields | kFindEditableFields | kFindReadOnlyFields)) | RadioBit(c));
            break;
        case kMatchCase: s.options ^= kFindMatchCase; break;
        case kWrap: s.options ^= kFindWrap; break;
        default: s.answer = c;
    }
}

bool HandleSessionEvent(void* context, const HostEvent& event, const Rect& box) {
    FindSession& s = *static_cast<FindSession*>(context);
    switch (event.kind) {
        case HostEventKind::MouseDown:
        case HostEventKind::MouseMove:
        case HostEventKind::MouseUp:
            if (const int chosen = FollowDialogPress(&s.press, event, ControlAt(event, box))) {
                Choose(s, static_cast<Control>(chosen));
            }
            return s.answer != kNone;
        default:
            if (const int answer = TypeIntoDialogLine(&s.text, kFindTextMax, event)) s.answer = answer == 1 ? kOk : kCancel;
            return s.answer != kNone;
    }
}

void GiveUpSession(void* context) { static_cast<FindSession*>(context)->answer = kCancel; }

}  // namespace

bool RunFindDialog(FindRequest* request) {
    FindSession session;
    session.text = request->text;
    session.options = static_cast<uint16_t>(request->options & ~kFindAgain);
    ModalDialog dialog;
    dialog.box = CentredBox(kBoxWidth, kBoxHeight);
    dialog.context = &session;
    dialog.Draw = DrawSession;
    dialog.HandleEvent = HandleSessionEvent;
    dialog.GiveUp = GiveUpSession;
    RunModalDialog(dialog);
    if (session.answer != kOk) return false;
    request->text = session.text;
    request->options = session.options;
    return true;
}

void FindCommand(FindRequest* request) {
    if (!(request->options & kFindAgain) && !RunFindDialog(request)) return;
    if (request->text.empty()) return;
    if (!FindInStack(request)) Alert(kAlertNoMatch);
}
