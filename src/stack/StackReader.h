// Reading a stack file into the document: header, plausibility test and load limits, the cards
// into one MemRef each, the typed-record store. Alerts and the blank stand-in belong to the open
// flow above this; here a failure is a code plus what an open would tell the user.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct LoadFault {
    int32_t code = 0;         // the read's error: 0, -1 (file or memory) or -12 (reported by alert)
    bool opened = false;      // the stack stands in the document with its cards and store
    std::vector<int> alerts;  // the numbered alerts an open shows, in order
    bool askMinimumSize = false;  // the cards are smaller than a window can be: the open asks
    uint64_t offset = 0;      // file offset where reading failed
    std::string detail;       // what was wrong there, for people
};

// Reads the stack at `hostPath` (slot 1 is set to it). Returns fault->code and says which alerts the
// open shows. A refused or cardless stack leaves the document empty; cards read before a damaged one
// stay, for the open flow to drop.
int32_t ReadStackFile(const std::string& hostPath, LoadFault* fault);
