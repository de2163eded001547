#pragma once

#include "base/EntryRef.h"
#include "kits/app/Messenger.h"

class BEntry;
class BNode;

// The changes of a node that a watch asks for; 0 ends the watch.
enum : uint32 {
    B_STOP_WATCHING = 0x0000,
    B_WATCH_NAME = 0x0001,      // it is renamed, moved or removed
    B_WATCH_STAT = 0x0002,      // its size, times, owner or permissions change
    B_WATCH_ATTR = 0x0004,      // its attributes change
    B_WATCH_DIRECTORY = 0x0008, // entries in it are created, removed, renamed, moved in or out
};

// The messages. `what` is B_NODE_MONITOR, "opcode" (int32) one of these; all have "device" (int32)
// and "node" (int64), and besides:
//   B_ENTRY_CREATED  "directory" (int64), "name" (string)
//   B_ENTRY_REMOVED  "directory" (int64), "name" (string)
//   B_ENTRY_MOVED    "from directory", "to directory" (int64, equal for a rename), "name" (string,
//                    the new one; the old one if the entry went to a place that cannot be learned)
//   B_STAT_CHANGED
//   B_ATTR_CHANGED
// A directory that is not known (an entry came from or went to a directory that nobody watches) is
// 0.
//
// The messages go to the watchers of the node and to those of its directory, once to each target. A
// new regular file is announced when nothing has happened to it for 50 ms, since programs that copy
// set the attributes last, and is announced again if its MIME type comes only later. When an entry
// replaces another, the removal of the other comes first. B_ATTR_CHANGED does not say which
// attribute changed, nor whether it has another value: it is sent when attributes, permissions or
// the number of links may have changed. When changes were lost (too many at once, the disk
// unmounted), each target gets the removal of the topmost directories that it watches; those that
// still exist stay watched.
enum : int32 {
    B_ENTRY_CREATED = 1,
    B_ENTRY_REMOVED = 2,
    B_ENTRY_MOVED = 3,
    B_STAT_CHANGED = 4,
    B_ATTR_CHANGED = 5,
};

// Adds `flags` to the changes of the node that are sent to `target`; B_STOP_WATCHING ends all: when
// that returns, no more messages about the node are sent to the target. The watch follows the node
// through renames and ends when it is removed or moved to a place that cannot be learned.
// B_ENTRY_NOT_FOUND if the node is not there any more or its ref was never handed out,
// B_NOT_A_DIRECTORY for B_WATCH_DIRECTORY on something else, B_PERMISSION_DENIED if the node cannot
// be read, B_BAD_VALUE for a stop of what was not watched. When the system gives no more watches:
// B_DEVICE_FULL or B_NO_MORE_FDS, also reported once on standard error; nothing is watched then
// that was not watched before, and a later call succeeds when other watches have ended. Any thread;
// does not wait for the target's lock.
status_t watch_node(const node_ref* node, uint32 flags, BMessenger target);

// Opens the node at the place of `entry` for reading its attributes, then watches it like
// watch_node(): what changes behind the call is notified. `ref` and `number` name the place and the
// node. All three are set whenever the node could be opened, whatever comes of the watch: see
// node->InitCheck().
status_t watch_entry(const BEntry& entry, uint32 flags, const BMessenger& target, BNode* node,
                     entry_ref* ref, node_ref* number);

// The file that holds the limit of the system that made watch_node fail with `status`, to be shown
// to a person; null if no limit did. Never freed. Any thread.
const char* watch_limit_file(status_t status);
