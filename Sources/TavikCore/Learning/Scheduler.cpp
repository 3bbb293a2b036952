#include "Learning/Scheduler.h"

namespace tavik {

RatingMap<Date> Scheduler::preview(const Card& card, Date now) const {
    RatingMap<Date> due;
    for (const Rating rating : allRatings)
        due[rating] = review(card, rating, now).card.due;
    return due;
}

} // namespace tavik
