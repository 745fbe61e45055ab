// A field's styles both ways between the record's form and the document's: what the stored runs
// and alignment show, and the runs and alignment to store for what the document holds now.
#pragma once

#include <cstdint>
#include <vector>

#include "text/StyledText.h"
#include "text/TextRecord.h"

TextStyle StyleOfRun(const StyleRun& run);
TextAlign AlignOf(int16_t stored);
int16_t StoredAlign(TextAlign align);

// The runs to store for `document`: a run whose style one of `loaded` shows keeps that stored
// run's font id, style bits, measures and colour words (the same place first, else the first such
// run); another gets the font id of a loaded run with its face, else the font map's, measures from
// our fonts and each colour byte repeated in its word. Runs that don't rise, or start at the text's
// end or past it, are left out; the first starts at 0.
std::vector<StyleRun> StoredRunsOf(const StyledDocument& document, const std::vector<StyleRun>& loaded);
