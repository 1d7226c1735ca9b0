#pragma once

#include <QString>

struct sockaddr_un;

// Puts the path of a local socket into `address`. False, with the reason in words, for a path
// the system cannot take: empty, or longer than a socket address holds (about a hundred bytes).
bool FillSocketAddress(const QString &path, sockaddr_un *address, QString *error);
