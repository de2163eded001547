#include "quillbarctl/Placement.h"

#include <algorithm>
#include <map>

#include "quillbar/bookmarks/StoreNames.h"

namespace {

bool IsFresh(const Folder& folder) {
    return folder.name.empty() && RoomIn(folder) == folder.slots.size();
}

using Waiting = std::vector<const CollectedBookmark*>;

class Placer {
public:
    Placer(std::optional<size_t> only, Folders& folders)
        : fOnly(only)
        , fFolders(folders) {
        for (const Folder& folder : folders) {
            for (const Slot& slot : folder.slots)
                fThere[{slot.name, slot.url}] += slot.isFilled ? 1 : 0;
        }
    }

    // Those that are there, and those that get the slot that they ask for; returns the others.
    Waiting Start(const Group& group);
    void Finish(const Group& group, const Waiting& waiting);
    std::vector<Placed> Take() { return std::move(fPlaced); }

private:
    bool IsThere(const Bookmark& bookmark);
    std::optional<size_t> FolderFor(const Group& group, size_t count) const;
    bool MayUse(size_t folder) const { return fOnly.value_or(folder) == folder; }
    void Fill(size_t folder, size_t slot, const CollectedBookmark& collected);

    const std::optional<size_t> fOnly;
    Folders& fFolders;
    std::map<std::pair<std::string, std::string>, size_t> fThere; // names and addresses
    std::vector<Placed> fPlaced;
};

// Each on the disk stands for one: who has a bookmark twice gets it back twice.
bool Placer::IsThere(const Bookmark& bookmark) {
    const auto found = fThere.find({bookmark.name, TextOf(bookmark, kUrlAttribute)});
    if (found == fThere.end() || found->second == 0)
        return false;
    --found->second;
    return true;
}

Waiting Placer::Start(const Group& group) {
    const bool isOurs = group.folder && MayUse(*group.folder);
    if (isOurs && fFolders[*group.folder].name.empty())
        fFolders[*group.folder].name = group.name;
    Waiting waiting;
    for (const CollectedBookmark& collected : group.bookmarks) {
        if (IsThere(collected.bookmark))
            fPlaced.push_back({&collected.bookmark, Fate::IsThere, 0, 0});
        else if (isOurs && collected.slot &&
                 !fFolders[*group.folder].slots[*collected.slot].isFilled)
            Fill(*group.folder, *collected.slot, collected);
        else
            waiting.push_back(&collected);
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

void Placer::Fill(size_t folder, size_t slot, const CollectedBookmark& collected) {
    fFolders[folder].slots[slot].isFilled = true;
    fPlaced.push_back({&collected.bookmark, Fate::Placed, folder, slot});
}

void Placer::Finish(const Group& group, const Waiting& waiting) {
    size_t done = 0;
    while (done < waiting.size()) {
        const std::optional<size_t> folder = FolderFor(group, waiting.size() - done);
        if (!folder)
            break;
        Folder& target = fFolders[*folder];
        if (IsFresh(target))
            target.name = group.name;
        for (; done < waiting.size() && RoomIn(target) > 0; ++done)
            Fill(*folder, *FirstEmptySlot(target), *waiting[done]);
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
    std::vector<Waiting> waiting;
    for (const Group& group : collection)
        waiting.push_back(placer.Start(group));
    for (size_t i = 0; i < collection.size(); ++i)
        placer.Finish(collection[i], waiting[i]);
    return placer.Take();
}
