#pragma once

#include <QString>
#include <QUrl>

// Whether the program may read an address. With VANTORA_OFFLINE set (every test and benchmark
// sets it) only this computer's own addresses and the hosts the program answers itself may be
// read, so that nothing a test does reaches the internet. Otherwise everything may.
bool NetworkReadAllowed(const QUrl &url);

// Whether reads are kept to this computer (VANTORA_OFFLINE is set).
bool NetworkReadsKeptLocal();

// The sentence a refused read reports.
QString NetworkRefusedText(const QUrl &url);
