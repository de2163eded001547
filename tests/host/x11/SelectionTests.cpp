#include <cstring>
#include <future>

#include "base/Errors.h"
#include "tests/host/x11/X11Test.h"

namespace host {
namespace {

class SelectionTest : public X11Test {
protected:
    using Answer = std::pair<status_t, std::string>;

    // Asks at once; the future is ready when the answer has come.
    std::future<Answer> Ask(SelectionKind selection = SelectionKind::Clipboard) {
        auto promise = std::make_shared<std::promise<Answer>>();
        display->AskSelection(selection, [promise](status_t status, std::string text) {
            promise->set_value({status, std::move(text)});
        });
        return promise->get_future();
    }
    static bool IsReady(const std::future<Answer>& answer) {
        return answer.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    }
    static Answer Await(std::future<Answer> answer) {
        if (answer.wait_for(test::kDeadline) != std::future_status::ready)
            return {B_ERROR, "no answer"};
        return answer.get();
    }
    // The next request that `from` gets; it has to be for `type`, if one is given.
    Peer::Request Requested(Peer& from, const std::string& type = "") {
        auto request = from.AwaitRequest();
        if (!request)
            throw std::runtime_error("nothing is asked for");
        EXPECT_TRUE(type.empty() || from.IsFor(*request, type)) << type;
        return request;
    }
};

TEST_F(SelectionTest, OffersItsTextInTheFormsThatOthersAskFor) {
    const std::string text = "grüß €";
    display->OwnSelection(SelectionKind::Clipboard, text);
    for (const char* target : {"UTF8_STRING", "TEXT", "text/plain;charset=utf-8"})
        EXPECT_EQ(peer.Ask("CLIPBOARD", target), text) << target;
    EXPECT_EQ(peer.Ask("CLIPBOARD", "STRING"), "gr\xfc\xdf ?");
    EXPECT_EQ(peer.Ask("CLIPBOARD", "TIMESTAMP")->size(), 4u);
    EXPECT_EQ(peer.Ask("CLIPBOARD", "TARGETS")->size(), 7 * 4u);
    EXPECT_EQ(peer.Ask("CLIPBOARD", "image/png"), std::nullopt);
    EXPECT_EQ(peer.Ask("PRIMARY", "UTF8_STRING"), std::nullopt);

    peer.SetAtoms("TAKEN", {"UTF8_STRING", "FIRST", "image/png", "SECOND", "MULTIPLE", "THIRD"},
                  "ATOM_PAIR");
    const std::string pairs = peer.Ask("CLIPBOARD", "MULTIPLE").value_or("");
    xcb_atom_t atoms[6];
    ASSERT_EQ(pairs.size(), sizeof(atoms));
    std::memcpy(atoms, pairs.data(), sizeof(atoms));
    EXPECT_THAT(atoms, ElementsAre(desk.Atom("UTF8_STRING"), desk.Atom("FIRST"),
                                   desk.Atom("image/png"), 0u, desk.Atom("MULTIPLE"), 0u));
    EXPECT_EQ(peer.TakeProperty("FIRST"), text);

    // The server would end the program's connection for a longer request than it allows.
    display->OwnSelection(SelectionKind::Clipboard, std::string(300'000, 'x'));
    EXPECT_EQ(peer.Ask("CLIPBOARD", "UTF8_STRING"), std::nullopt);
}

TEST_F(SelectionTest, AsksForOtherFormsWhenTheFirstIsRefused) {
    EXPECT_EQ(Await(Ask()).first, B_ENTRY_NOT_FOUND);
    // What it offers itself it need not ask for, until another program takes the selection.
    display->OwnSelection(SelectionKind::Clipboard, "own");
    EXPECT_EQ(Await(Ask()), Answer(B_OK, "own"));
    peer.Own("CLIPBOARD");
    display.AwaitEvents();
    auto answer = Ask();
    for (const char* target : {"UTF8_STRING", "text/plain;charset=utf-8"})
        peer.Refuse(*Requested(peer, target));
    peer.Answer(*Requested(peer, "STRING"), {"\xfcx", 8, "STRING"});
    EXPECT_EQ(Await(std::move(answer)), Answer(B_OK, "üx"));
}

TEST_F(SelectionTest, TakesALongTextInPartsUpToABound) {
    peer.Own("CLIPBOARD");
    auto answer = Ask();
    auto request = Requested(peer);
    peer.BeginParts(*request);
    for (const char* part : {"one ", "two ", "three", ""})
        EXPECT_TRUE(peer.AnswerPart(*request, part));
    EXPECT_EQ(Await(std::move(answer)), Answer(B_OK, "one two three"));

    answer = Ask();
    request = Requested(peer);
    peer.BeginParts(*request);
    const std::string part(200'000, 'x');
    size_t given = 0;
    while (!IsReady(answer) && given < (size_t{20} << 20) && peer.AnswerPart(*request, part))
        given += part.size();
    EXPECT_EQ(Await(std::move(answer)), Answer(B_NO_MEMORY, ""));
    EXPECT_GT(given, size_t{15} << 20);
}

TEST_F(SelectionTest, GivesUpOwnersThatStopAnswering) {
    auto dying = std::make_unique<Peer>(desk);
    dying->Own("PRIMARY");
    auto half = Ask(SelectionKind::Primary);
    const auto request = Requested(*dying);
    dying->BeginParts(*request);
    dying->AnswerPart(*request, "a beginning");
    peer.Own("CLIPBOARD");
    auto silent = Ask();
    dying.reset();
    // Meanwhile all else goes on.
    display.AwaitEvents();
    EXPECT_FALSE(IsReady(half));
    EXPECT_EQ(Await(std::move(half)).first, B_TIMED_OUT);
    EXPECT_EQ(Await(std::move(silent)).first, B_TIMED_OUT);
}

TEST_F(SelectionTest, LeavesTheClipboardToItsManager) {
    display->OwnSelection(SelectionKind::Clipboard, "a text");
    // Without a manager there is nothing to wait for.
    display->SaveClipboard(60'000'000);
    peer.Own("CLIPBOARD_MANAGER");
    auto saving = std::async(std::launch::async, [&] { display->SaveClipboard(60'000'000); });
    const auto request = Requested(peer, "SAVE_TARGETS");
    EXPECT_EQ(peer.Ask("CLIPBOARD", "UTF8_STRING"), "a text");
    EXPECT_NE(saving.wait_for(std::chrono::seconds(0)), std::future_status::ready);
    peer.Notify(*request, request->property);
    EXPECT_EQ(saving.wait_for(test::kDeadline), std::future_status::ready);
    // One that does not answer is not waited for.
    display->SaveClipboard(100'000);
}

} // namespace
} // namespace host
