#include "kits/app/Message.h"
#include "kits/app/MessageField.h"
#include "kits/app/MessageText.h"
#include "kits/support/DataIO.h"

status_t BMessage::Flatten(std::string* text) const {
    std::string written;
    if (!text || !MessageText::Write(*this, written))
        return B_BAD_VALUE;
    *text = std::move(written);
    return B_OK;
}

status_t BMessage::Flatten(BDataIO* stream) const {
    std::string text;
    const status_t status = stream ? Flatten(&text) : B_BAD_VALUE;
    if (status != B_OK)
        return status;
    for (size_t done = 0; done < text.size();) {
        const ssize_t written = stream->Write(text.data() + done, text.size() - done);
        if (written <= 0)
            return written < 0 ? static_cast<status_t>(written) : B_IO_ERROR;
        done += written;
    }
    return B_OK;
}

status_t BMessage::Unflatten(BDataIO* stream) {
    if (!stream)
        return B_BAD_VALUE;
    std::string text;
    char buffer[8192];
    for (;;) {
        const ssize_t count = stream->Read(buffer, sizeof(buffer));
        if (count < 0)
            return static_cast<status_t>(count);
        if (count == 0)
            return Unflatten(text.data(), text.size());
        text.append(buffer, count);
        if (text.size() > MessageText::kMaxSize)
            return B_BAD_DATA;
    }
}

status_t BMessage::Unflatten(const void* text, size_t size) {
    if (!text)
        return B_BAD_VALUE;
    BMessage message;
    if (!MessageText::Read({static_cast<const char*>(text), size}, message))
        return B_BAD_DATA;
    *this = std::move(message);
    return B_OK;
}
