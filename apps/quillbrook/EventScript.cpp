#include "EventScript.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include <cstdint>
#include <string_view>

#include "base/Windows1252.h"
#include "platform/sdl/KeyNames.h"

namespace {

using Json = nlohmann::ordered_json;

struct KindName {
    HostEventKind kind;
    std::string_view name;
};
inline constexpr KindName kKindNames[] = {
    {HostEventKind::MouseDown, "mousedown"}, {HostEventKind::MouseUp, "mouseup"},
    {HostEventKind::MouseMove, "mousemove"}, {HostEventKind::KeyDown, "keydown"},
    {HostEventKind::KeyUp, "keyup"},         {HostEventKind::Char, "char"},
    {HostEventKind::FocusLost, "focuslost"},
};

struct ModName {
    uint32_t mod;
    std::string_view name;
};
inline constexpr ModName kModNames[] = {{kModShift, "shift"}, {kModCtrl, "ctrl"}, {kModAlt, "alt"}};

std::string_view NameOfKind(HostEventKind kind) {
    for (const KindName& k : kKindNames) {
        if (k.kind == kind) return k.name;
    }
    return {};
}

bool IsMouse(HostEventKind kind) {
    return kind == HostEventKind::MouseDown || kind == HostEventKind::MouseUp ||
           kind == HostEventKind::MouseMove;
}

// A whole number in [low, high] at `key`, or `fallback` when the key is absent.
bool ReadInt(const Json& object, const char* key, int64_t low, int64_t high, int64_t fallback,
             int64_t* out, std::string* error) {
    const auto it = object.find(key);
    if (it == object.end()) {
        *out = fallback;
        return true;
    }
    if (!it->is_number_integer() || it->get<int64_t>() < low || it->get<int64_t>() > high) {
        *error = fmt::format("\"{}\" must be a whole number from {} to {}", key, low, high);
        return false;
    }
    *out = it->get<int64_t>();
    return true;
}

bool ReadEvent(const Json& object, HostEvent* event, std::string* error) {
    if (!object.is_object()) {
        *error = "not an object";
        return false;
    }
    const auto kind = object.find("event");
    if (kind == object.end() || !kind->is_string()) {
        *error = "no \"event\" name";
        return false;
    }
    const std::string& name = kind->get_ref<const std::string&>();
    for (const KindName& k : kKindNames) {
        if (k.name == name) event->kind = k.kind;
    }
    if (event->kind == HostEventKind::None) {
        *error = fmt::format("unknown event \"{}\"", name);
        return false;
    }
    if (!object.contains("at")) {
        *error = "no \"at\" time";
        return false;
    }
    int64_t at = 0, x = 0, y = 0, button = 0, clicks = 0;
    const int64_t defaultButton = event->kind == HostEventKind::MouseMove ? 0 : 1;
    if (!ReadInt(object, "at", 0, INT32_MAX, 0, &at, error) ||
        !ReadInt(object, "x", INT16_MIN, INT16_MAX, 0, &x, error) ||
        !ReadInt(object, "y", INT16_MIN, INT16_MAX, 0, &y, error) ||
        !ReadInt(object, "button", 0, 2, defaultButton, &button, error) ||
        !ReadInt(object, "clicks", 1, 2, 1, &clicks, error)) {
        return false;
    }
    event->time = static_cast<uint32_t>(at);
    event->x = static_cast<int32_t>(x);
    event->y = static_cast<int32_t>(y);
    event->button = static_cast<int32_t>(button);
    event->clicks = static_cast<int32_t>(clicks);
    if (const auto mods = object.find("mods"); mods != object.end()) {
        if (!mods->is_array()) {
            *error = "\"mods\" must be a list";
            return false;
        }
        for (const Json& mod : *mods) {
            uint32_t bit = 0;
            for (const ModName& m : kModNames) {
                if (mod.is_string() && mod.get_ref<const std::string&>() == m.name) bit = m.mod;
            }
            if (bit == 0) {
                *error = fmt::format("unknown modifier {} (shift, ctrl or alt)", mod.dump());
                return false;
            }
            event->mods |= bit;
        }
    }
    if (IsMouse(event->kind) || event->kind == HostEventKind::FocusLost) return true;
    const auto key = object.find("key");
    if (key == object.end() || !key->is_string()) {
        *error = "no \"key\"";
        return false;
    }
    const std::string& keyText = key->get_ref<const std::string&>();
    if (event->kind == HostEventKind::Char) {
        const std::string ch = Windows1252FromUtf8(keyText);
        if (ch.size() != 1) {
            *error = fmt::format("\"key\" of a char must be one character, not \"{}\"", keyText);
            return false;
        }
        event->ch = static_cast<uint8_t>(ch[0]);
        return true;
    }
    event->key = VirtualKeyFromName(keyText);
    if (event->key == 0) {
        *error = fmt::format("unknown key \"{}\"", keyText);
        return false;
    }
    return true;
}

Json ModsJson(uint32_t mods) {
    Json list = Json::array();
    for (const ModName& m : kModNames) {
        if (mods & m.mod) list.push_back(std::string(m.name));
    }
    return list;
}

}  // namespace

bool ParseEventScript(const std::string& text, std::vector<HostEvent>* events, std::string* error) {
    events->clear();
    Json script;
    try {
        script = Json::parse(text);
    } catch (const nlohmann::json::parse_error& e) {
        std::string message = e.what();
        // The parser's message without its "[json.exception.parse_error.101] " tag.
        const size_t tagEnd = message.find("] ");
        if (!message.empty() && message.front() == '[' && tagEnd != std::string::npos)
            message.erase(0, tagEnd + 2);
        *error = "not valid JSON: " + message;
        return false;
    }
    if (!script.is_array()) {
        *error = "the events must be a JSON list";
        return false;
    }
    for (size_t i = 0; i < script.size(); ++i) {
        HostEvent event;
        std::string why;
        if (!ReadEvent(script[i], &event, &why)) {
            *error = fmt::format("event {}: {}", i + 1, why);
            return false;
        }
        if (!events->empty() && event.time < events->back().time) {
            *error = fmt::format("event {}: \"at\" goes back in time ({} after {})", i + 1,
                                 event.time, events->back().time);
            return false;
        }
        events->push_back(event);
    }
    return true;
}

std::string EventScriptText(const std::vector<HostEvent>& events) {
    std::string text = "[";
    bool first = true;
    for (const HostEvent& e : events) {
        const std::string_view kind = NameOfKind(e.kind);
        if (kind.empty()) continue;
        Json object;
        object["at"] = e.time;
        object["event"] = std::string(kind);
        if (IsMouse(e.kind)) {
            object["x"] = e.x;
            object["y"] = e.y;
            object["button"] = e.button;
            if (e.clicks == 2 && e.kind == HostEventKind::MouseDown) object["clicks"] = 2;
        } else if (e.kind == HostEventKind::Char) {
            object["key"] = Utf8FromWindows1252(std::string(1, static_cast<char>(e.ch)));
        } else if (e.kind != HostEventKind::FocusLost) {
            object["key"] = std::string(NameOfVirtualKey(e.key));
        }
        object["mods"] = ModsJson(e.mods);
        text += first ? "\n  " : ",\n  ";
        text += object.dump();
        first = false;
    }
    text += first ? "]\n" : "\n]\n";
    return text;
}
