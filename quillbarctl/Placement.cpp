#include "quillbarctl/Placement.h"

#include <algorithm>
#include <set>

#include "quillbar/bookmarks/StoreNames.h"

namespace {

bool IsFresh(const Folder& folder) {
    return folder.name.empty() && RoomIn(folder) == folder.slots.size();
}

class Placer {
public:
    Placer(std::optional<size_t> only, Folders& folders)
        : fOnly(only)
        , fFolders(folders) {
        for (const Folder& folder : folders) {
            for (const Slot& slot : folder.slots)
                fThere.emplace(slot.name, slot.url);
        }
    }

    void Add(const Group& group);
    std::vector<Placed> Take() { return std::move(fPlaced); }

private:
    using Waiting = std::vector<const CollectedBookmark*>;

    Waiting WithoutThoseThere(const Group& group);
    std::optional<size_t> FolderFor(const Group& group, size_t count) const;
    bool MayUse(size_t folder) const { return fOnly.value_or(folder) == folder; }
    void Fill(size_t folder, const Group& group, const CollectedBookmark& collected);

    const std::optional<size_t> fOnly;
    Folders& fFolders;
    std::set<std::pair<std::string, std::string>> fThere; // names and addresses
    std::vector<Placed> fPlaced;
};

Placer::Waiting Placer::WithoutThoseThere(const Group& group) {
    Waiting waiting;
    for (const CollectedBookmark& collected : group.bookmarks) {
        const Bookmark& bookmark = collected.bookmark;
        if (fThere.emplace(bookmark.name, TextOf(bookmark, kUrlAttribute)).second)
            waiting.push_back(&collected);
        else
            fPlaced.push_back({&bookmark, Fate::IsThere, 0, 0});
    }
    return waiting;
}

// The best folder for so many of the group's bookmarks, or for some of them.
std::optional<size_t> Placer::FolderFor(const Group& group, size_t count) const {
    std::optional<size_t> best;
    int rankOfBest = 0;
    for (size_t folder = 0; folder < fFolders.size(); ++folder) {
        const Folder& candidate = fFolders[folder];
        const int room = static_cast<int>(RoomIn(candidate));
        if (!MayUse(folder) || room == 0)
            continue;
        int rank = room; // up to 10
        if (group.folder == folder)
            rank = 40;
        else if (static_cast<size_t>(room) >= count && !group.name.empty() &&
                 candidate.name == group.name)
            rank = 30;
        else if (static_cast<size_t>(room) >= count)
            rank = IsFresh(candidate) ? 20 : 11;
        if (rank > rankOfBest) {
            best = folder;
            rankOfBest = rank;
        }
    }
    return best;
}

void Placer::Fill(size_t folder, const Group& group, const CollectedBookmark& collected) {
    Folder& target = fFolders[folder];
    const bool isWished =
        group.folder == folder && collected.slot && !target.slots[*collected.slot].isFilled;
    const size_t slot = isWished ? *collected.slot : *FirstEmptySlot(target);
    target.slots[slot].isFilled = true;
    fPlaced.push_back({&collected.bookmark, Fate::Placed, folder, slot});
}

void Placer::Add(const Group& group) {
    Waiting waiting = WithoutThoseThere(group);
    // Those that get the slot that they ask for do not lose it to one that does not.
    std::stable_partition(waiting.begin(), waiting.end(),
                          [](const auto* one) { return one->slot.has_value(); });
    if (group.folder && MayUse(*group.folder) && fFolders[*group.folder].name.empty())
        fFolders[*group.folder].name = group.name;
    size_t done = 0;
    while (done < waiting.size()) {
        const std::optional<size_t> folder = FolderFor(group, waiting.size() - done);
        if (!folder)
            break;
        Folder& target = fFolders[*folder];
        if (IsFresh(target))
            target.name = group.name;
        for (; done < waiting.size() && RoomIn(target) > 0; ++done)
            Fill(*folder, group, *waiting[done]);
    }
    for (; done < waiting.size(); ++done)
        fPlaced.push_back({&waiting[done]->bookmark, Fate::NoRoom, 0, 0});
}

} // namespace

size_t RoomIn(const Folder& folder) {
    return static_cast<size_t>(
        std::ranges::count_if(folder.slots, [](const Slot& slot) { return !slot.isFilled; }));
}

std::vector<Placed> PlaceAll(const Collection& collection, std::optional<size_t> only,
                             Folders& folders) {
    Placer placer(only, folders);
    for (const Group& group : collection)
        placer.Add(group);
    return placer.Take();
}
