#pragma once
// Sorting a list by one of its columns: Finnish collation without regard to letter case,
// stable, with "Rivi" compared as digit text.
#include "lists/ListModel.h"

#include <vector>

namespace lists {

// The order of the rows sorted by `keyColumn`: element i is the 1-based old position of the row
// that goes to position i + 1. Rows whose texts collate alike keep their order.
std::vector<int> SortedOrder(const ListModel& list, int keyColumn);

// The sort itself: the rows put into SortedOrder, in place.
void SortByColumn(ListModel& list, int keyColumn);

} // namespace lists
