#pragma once

#include "calendar/month_layout.h"

#include <QImage>

// A month's drawing laid out for another first day of the week: each day's cell of the page is
// moved to where that day's cell is in `to`, so ink stays on the day it was drawn on. Days that
// `to` does not show (a day of the month before or after that falls off the grid) are dropped.
QImage RemapPageCells(const QImage &page, const MonthLayout &from, const MonthLayout &to);
