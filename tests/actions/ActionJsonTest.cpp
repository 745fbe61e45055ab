// `quillbrook build` writes 'Actn' records from a readable action head, byte for byte as the format
// has them, and a stack built that way runs its actions.
#ifdef QB_WITH_CLI

#include <nlohmann/json.hpp>

#include "StackBuilder.h"
#include "actions/ActionStack.h"
#include "base/ByteOrder.h"

namespace {

class ActionJsonTest : public ActionStackTest {};

TEST_F(ActionJsonTest, ActnRecordsFromTheirHead) {
    const auto description = nlohmann::ordered_json::parse(R"({
      "cards": [{ "id": 1, "arriveAction": 5 }, { "id": 2 }],
      "records": [{ "type": "Actn", "id": 5, "name": "onward", "action": {
        "name": "Onward", "rect": [10, 20, 110, 60], "destination": 2, "transition": 21, "actionFlags": 36,
        "transitionSpeed": 16, "testCode": 1, "transitionColor": 3, "timerSeconds": 4, "timerMode": 2,
        "subRecords": [{ "type": 83, "fields": { "4": 200, "16": 7 } }] } }]
    })");
    Bytes stack;
    std::string error;
    ASSERT_TRUE(BuildStack(description, ".", &stack, &error)) << error;

    Bytes expected = StoredAction(5, {.flags = 36,
                                      .destination = 2,
                                      .transition = 21,
                                      .testCode = 1,
                                      .transitionColor = 3,
                                      .transitionSpeed = 16,
                                      .name = "Onward",
                                      .rect = {10, 20, 110, 60},
                                      .subs = {StoredSub(83, {}, {{4, 200}, {16, 7}})}});
    PutBE16(expected, 24, 4);
    PutBE16(expected, 26, 2);
    const size_t data = ReadBE32(&stack[60]) + 68;
    ASSERT_GE(stack.size(), data + expected.size());
    EXPECT_EQ(Bytes(stack.begin() + static_cast<ptrdiff_t>(data),
                    stack.begin() + static_cast<ptrdiff_t>(data + expected.size())),
              expected);

    // Opened, the first card's arrive action takes us on to the second.
    GetSubsystems().RunNamedAction = RunNamedAction;
    Open(WriteTempFile("built-actions.stk", stack));
    EXPECT_EQ(Current(), 2);
}

}  // namespace

#endif  // QB_WITH_CLI
