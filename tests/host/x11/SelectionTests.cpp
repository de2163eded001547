#include <cstring>
#include <future>

#include <gmock/gmock.h>

#include "base/Errors.h"
#include "tests/host/x11/EventLog.h"
#include "tests/support/Peer.h"

namespace host {
namespace {

using test::Peer;
using test::PrivateDesktop;

class SelectionTest : public testing::Test {
protected:
    struct Answer {
        status_t status;
        std::string text;
    };

    // Asks at once; the future is ready when the answer has come.
    std::future<Answer> Ask(SelectionKind selection) {
        auto promise = std::make_shared<std::promise<Answer>>();
        display->AskSelection(selection, [promise](status_t status, std::string text) {
            promise->set_value({status, std::move(text)});
        });
        return promise->get_future();
    }
    static Answer Await(std::future<Answer>& answer) {
        if (answer.wait_for(test::kDeadline) != std::future_status::ready)
            return {B_ERROR, "no answer"};
        return answer.get();
    }

    PrivateDesktop& desktop = PrivateDesktop::Shared();
    TestDisplay display{desktop};
    Peer other{desktop};
};

TEST_F(SelectionTest, OffersItsTextInTheFormsThatOthersAskFor) {
    const std::string text = "gr\xc3\xbc\xc3\x9f \xe2\x82\xac";
    display->OwnSelection(SelectionKind::Clipboard, text);
    for (const char* target : {"UTF8_STRING", "TEXT", "text/plain;charset=utf-8"})
        EXPECT_EQ(other.Ask("CLIPBOARD", target), text) << target;
    EXPECT_EQ(other.Ask("CLIPBOARD", "STRING"), "gr\xfc\xdf ?");
    EXPECT_EQ(other.Ask("CLIPBOARD", "TIMESTAMP")->size(), 4u);
    EXPECT_EQ(other.Ask("CLIPBOARD", "TARGETS")->size(), 7 * 4u);
    EXPECT_EQ(other.Ask("CLIPBOARD", "image/png"), std::nullopt);
    EXPECT_EQ(other.Ask("PRIMARY", "UTF8_STRING"), std::nullopt);

    other.SetAtoms("TAKEN", {"UTF8_STRING", "FIRST", "image/png", "SECOND", "MULTIPLE", "THIRD"},
                   "ATOM_PAIR");
    const std::string pairs = other.Ask("CLIPBOARD", "MULTIPLE").value_or("");
    ASSERT_EQ(pairs.size(), 6 * 4u);
    xcb_atom_t atoms[6];
    std::memcpy(atoms, pairs.data(), sizeof(atoms));
    EXPECT_THAT(atoms,
                testing::ElementsAre(desktop.Atom("UTF8_STRING"), desktop.Atom("FIRST"),
                                     desktop.Atom("image/png"), 0u, desktop.Atom("MULTIPLE"), 0u));
    EXPECT_EQ(other.TakeProperty("FIRST"), text);

    // The server would end the program's connection for a longer request than it allows.
    display->OwnSelection(SelectionKind::Clipboard, std::string(300'000, 'x'));
    EXPECT_EQ(other.Ask("CLIPBOARD", "UTF8_STRING"), std::nullopt);
}

TEST_F(SelectionTest, AsksForOtherFormsWhenTheFirstIsRefused) {
    auto nobody = Ask(SelectionKind::Clipboard);
    EXPECT_EQ(Await(nobody).status, B_ENTRY_NOT_FOUND);

    other.Own("CLIPBOARD");
    auto answer = Ask(SelectionKind::Clipboard);
    for (const char* target : {"UTF8_STRING", "text/plain;charset=utf-8"}) {
        auto request = other.AwaitRequest();
        ASSERT_TRUE(request && other.IsFor(*request, target));
        other.Refuse(*request);
    }
    auto request = other.AwaitRequest();
    ASSERT_TRUE(request && other.IsFor(*request, "STRING"));
    other.Answer(*request, {"\xfc"
                            "ber",
                            8, "STRING"});
    Answer got = Await(answer);
    EXPECT_EQ(got.status, B_OK);
    EXPECT_EQ(got.text, "\xc3\xbc"
                        "ber");

    // What it takes itself it need not ask for, until another program takes it.
    display->OwnSelection(SelectionKind::Clipboard, "own");
    answer = Ask(SelectionKind::Clipboard);
    EXPECT_EQ(Await(answer).text, "own");
    other.Own("CLIPBOARD");
    display.AwaitEvents();
    answer = Ask(SelectionKind::Clipboard);
    request = other.AwaitRequest();
    ASSERT_TRUE(request);
    other.Answer(*request, {"theirs"});
    EXPECT_EQ(Await(answer).text, "theirs");
}

TEST_F(SelectionTest, TakesALongTextInPartsUpToABound) {
    other.Own("CLIPBOARD");
    auto answer = Ask(SelectionKind::Clipboard);
    auto request = other.AwaitRequest();
    ASSERT_TRUE(request);
    other.BeginParts(*request);
    for (const char* part : {"one ", "two ", "three", ""})
        EXPECT_TRUE(other.AnswerPart(*request, part));
    EXPECT_EQ(Await(answer).text, "one two three");

    answer = Ask(SelectionKind::Clipboard);
    request = other.AwaitRequest();
    ASSERT_TRUE(request);
    other.BeginParts(*request);
    const std::string part(200'000, 'x');
    size_t given = 0;
    while (answer.wait_for(std::chrono::seconds(0)) != std::future_status::ready &&
           given < (size_t{20} << 20) && other.AnswerPart(*request, part))
        given += part.size();
    Answer got = Await(answer);
    EXPECT_EQ(got.status, B_NO_MEMORY);
    EXPECT_EQ(got.text, "");
    EXPECT_GT(given, size_t{15} << 20);
}

TEST_F(SelectionTest, GivesUpOwnersThatStopAnswering) {
    auto dying = std::make_unique<Peer>(desktop);
    dying->Own("PRIMARY");
    auto half = Ask(SelectionKind::Primary);
    auto request = dying->AwaitRequest();
    ASSERT_TRUE(request);
    dying->BeginParts(*request);
    dying->AnswerPart(*request, "a beginning");
    other.Own("CLIPBOARD");
    auto silent = Ask(SelectionKind::Clipboard);
    dying.reset();
    // Meanwhile all else goes on.
    display.AwaitEvents();
    EXPECT_NE(half.wait_for(std::chrono::seconds(0)), std::future_status::ready);
    EXPECT_EQ(Await(half).status, B_TIMED_OUT);
    EXPECT_EQ(Await(silent).status, B_TIMED_OUT);
}

TEST_F(SelectionTest, LeavesTheClipboardToItsManager) {
    display->OwnSelection(SelectionKind::Clipboard, "a text");
    // Without a manager there is nothing to wait for.
    display->SaveClipboard(60'000'000);
    other.Own("CLIPBOARD_MANAGER");
    auto saving = std::async(std::launch::async, [&] { display->SaveClipboard(60'000'000); });
    auto request = other.AwaitRequest();
    ASSERT_TRUE(request && other.IsFor(*request, "SAVE_TARGETS"));
    EXPECT_EQ(other.Ask("CLIPBOARD", "UTF8_STRING"), "a text");
    EXPECT_NE(saving.wait_for(std::chrono::seconds(0)), std::future_status::ready);
    other.Notify(*request, request->property);
    EXPECT_EQ(saving.wait_for(test::kDeadline), std::future_status::ready);
    // One that does not answer is not waited for.
    display->SaveClipboard(100'000);
}

} // namespace
} // namespace host
