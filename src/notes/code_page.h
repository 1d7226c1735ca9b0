#pragma once

#include <QByteArray>
#include <QString>

// Text in the Windows code pages that RTF files and old plain-text files are written in.
//
// Windows-1252 is decoded and encoded with a table of our own, so it works on every build.
// The other pages go through QStringDecoder, which knows them when Qt is built with ICU (the
// Linux builds are); where a page is unknown to Qt its bytes are read as Windows-1252, which
// keeps ASCII right and never loses a byte.
//
// Supported pages: 1250-1258, 874, 437, 850, 10000 (Mac Roman), 65001 (UTF-8) and the
// double-byte pages 932 (Shift-JIS), 936 (GBK), 949 (Korean) and 950 (Big5). Any other page
// number is read as Windows-1252.

// The code page number that stands for a symbol font (RTF \fcharset2). Symbol fonts have no
// code page: their bytes are glyph numbers. They are decoded as Latin-1 (byte n becomes
// U+00nn), which keeps the text readable when the symbol font is missing, and lets a writer
// give back exactly the bytes that were read.
constexpr int kSymbolCodePage = 0;

constexpr int kWindows1252 = 1252;

// Decodes `bytes` written in `codePage`. Bytes that mean nothing in the page, and a lead byte
// of a double-byte page left without its second byte, become U+FFFD. Never fails.
QString DecodeCodePage(const QByteArray &bytes, int codePage);

// True for 932, 936, 949 and 950, whose characters may take two bytes.
bool IsDoubleByteCodePage(int codePage);

// True when `byte` starts a two-byte character in `codePage` (always false for a single-byte
// page). An RTF reader uses it to pair \'xx escapes before decoding.
bool IsLeadByte(int codePage, uchar byte);

// The code page of an RTF \fcharsetN: 0 -> 1252, 2 -> kSymbolCodePage, 77 -> 10000,
// 128 -> 932, 129 -> 949, 134 -> 936, 136 -> 950, 161 -> 1253, 162 -> 1254, 163 -> 1258,
// 177 -> 1255, 178 -> 1256, 186 -> 1257, 204 -> 1251, 222 -> 874, 238 -> 1250. Any other
// charset gives -1: the caller keeps the document's default code page.
int CodePageForCharset(int rtfCharset);

// Windows-1252 as Windows reads it: the five bytes the page leaves undefined (0x81, 0x8D,
// 0x8F, 0x90, 0x9D) become the control characters U+0081 ... U+009D, so any bytes decode and
// encode back unchanged.
QString DecodeWindows1252(const QByteArray &bytes);

// Encodes `text` in Windows-1252. A character the page lacks is written as '?' and clears
// *lossless (when given); *lossless is true when every character was kept.
QByteArray EncodeWindows1252(const QString &text, bool *lossless = nullptr);
