// The entries of the day map, while a selection fills them.
#pragma once

#include <array>
#include <map>
#include <string>
#include <vector>

#include "host/base/fixed_text.h"
#include "transfer/format/package_format.h"
#include "transfer/records.h"

namespace chattransfer {

using MessagesOfDay = std::vector<imsdk::st_dbMessageBean>;
using DayMessages = std::map<std::string, MessagesOfDay>;

/// The day of a message as the key of its entry: year, month and day in decimal, without leading zeros.
[[nodiscard]] inline std::string dayKeyOf(const imsdk::st_dbMessageBean& message, char separator) {
    return std::to_string(message.year_) + separator + std::to_string(message.mon) + separator +
           std::to_string(message.day_);
}

/// Remembers where the messages of a day go. Tables are visited one after another, so every day comes up once per
/// conversation: building its key text each time would cost more than the rest of the selection. And looking for the
/// overflow entry that has room from the first one each time would make a day of many messages quadratic.
class DayEntries {
public:
    DayEntries(DayMessages& days, char separator) : days_(days), separator_(separator) {}

    /// The entry of the message's day, without a limit.
    [[nodiscard]] MessagesOfDay& of(const imsdk::st_dbMessageBean& message) { return *dayOf(message).first; }

    /// The entry of the message's day that has room for it: the first of 250, or an overflow entry. Null when the key
    /// of an overflow entry does not fit its buffer.
    [[nodiscard]] MessagesOfDay* withRoom(const imsdk::st_dbMessageBean& message) {
        Day& day = dayOf(message);
        if (day.open->size() == kFewMessages) day.open->reserve(kMessagesPerEntry);
        if (day.open->size() < kMessagesPerEntry) return day.open;
        MessagesOfDay* next = nextOverflow(days_, day.key, day.overflow);
        if (next != nullptr) day.open = next;
        return next;
    }

    /// The first of the overflow entries of `dayKey` after number `overflow` that has room, made when it is missing.
    [[nodiscard]] static MessagesOfDay* nextOverflow(DayMessages& days, const std::string& dayKey, int& overflow) {
        for (;;) {
            // Hosts know this limit: a day key that passes it leaves the message out.
            const tools::FixedText<100> key("%s_%d", dayKey.c_str(), ++overflow);
            if (!key.fits()) return nullptr;
            MessagesOfDay& entry = days[key.text()];
            if (entry.size() < kMessagesPerEntry) return &entry;
        }
    }

private:
    // An entry that has so many gets the room of a full one: growing further step by step would move its records again,
    // and the blocks left behind would stay in the heap as holes.
    static constexpr std::size_t kFewMessages = 32;

    using Date = std::array<int, 3>;

    struct Day {
        std::string key;
        MessagesOfDay* first = nullptr;
        MessagesOfDay* open = nullptr;  // the entry that is being filled
        int overflow = 0;               // its number; 0 for the first
    };

    [[nodiscard]] Day& dayOf(const imsdk::st_dbMessageBean& message) {
        const Date date = {message.year_, message.mon, message.day_};
        if (last_ != nullptr && lastDate_ == date) return *last_;
        last_ = &known_[date];
        lastDate_ = date;
        if (last_->first == nullptr) {
            last_->key = dayKeyOf(message, separator_);
            last_->first = last_->open = &days_[last_->key];
        }
        return *last_;
    }

    DayMessages& days_;
    char separator_;
    std::map<Date, Day> known_;
    // The messages of a table mostly come in the order of their days.
    Day* last_ = nullptr;
    Date lastDate_{};
};

}  // namespace chattransfer
