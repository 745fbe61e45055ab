// Text sub-records as a loaded stack holds them (a native head, a big-endian body), for the tests
// of the record reader and of fields.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "base/ByteOrder.h"
#include "text/TextRecord.h"

// `count` -1 stores the number of runs given; another number makes a damaged table.
inline std::vector<uint8_t> TextRecordBytes(uint16_t cardId, const std::string& text,
                                            const std::vector<StyleRun>& runs, int32_t count = -1) {
    std::vector<uint8_t> r(kTextRecordHeadSize + text.size());
    Write16(&r[kTextRecordKind], kTextRecordType);
    Write16(&r[kTextRecordCardId], cardId);
    Write32(&r[kTextRecordLength], static_cast<uint32_t>(text.size()));
    std::copy(text.begin(), text.end(), r.begin() + kTextRecordHeadSize);
    if (!runs.empty() || count >= 0) {
        r.resize(r.size() + kStyleCountSize + runs.size() * kStyleRunSize);
        uint8_t* table = &r[kTextRecordHeadSize + text.size()];
        WriteBE16(table, static_cast<uint16_t>(count >= 0 ? count : runs.size()));
        for (size_t i = 0; i < runs.size(); ++i) {
            uint8_t* e = table + kStyleCountSize + i * kStyleRunSize;
            const StyleRun& run = runs[i];
            WriteBE32(e + kStyleRunStart, run.start);
            const std::pair<uint32_t, uint16_t> words[] = {
                {kStyleRunLineHeight, run.lineHeight}, {kStyleRunAscent, run.ascent}, {kStyleRunFontId, run.fontId},
                {kStyleRunPoints, run.size}, {kStyleRunRed, run.red}, {kStyleRunRed + 2, run.green}, {kStyleRunRed + 4, run.blue}};
            for (const auto& [at, v] : words) WriteBE16(e + at, v);
            e[kStyleRunStyle] = run.style;
        }
    }
    Write32(&r[kTextRecordSize], static_cast<uint32_t>(r.size()));
    return r;
}
