#pragma once

#include <QByteArrayView>

// The RTF control words the reader acts on, looked up once per word through a hash table.
enum class RtfWord {
    Unknown,
    // destinations
    FontTable, ColorTable, ListTable, ListOverrideTable, Field, FieldInstruction, FieldResult,
    Picture, ShapePicture, NoShapePicture, Shape, ShapeInstance, ShapeProperty, ShapeName,
    ShapeValue, Object, ObjectResult, OldListNumbering, NestedTableProperties, SkippedDestination,
    // document
    AnsiCodePage, DefaultFont, Mac, Pc, Pca, Binary, UnicodeSkip, Unicode,
    // font and colour tables
    Charset, CodePage, Red, Green, Blue,
    // characters
    Plain, Bold, Italic, Underline, UnderlineNone, Strike, Hidden, Caps, SmallCaps, Super, Sub,
    NoSuperSub, Up, Down, Font, FontSize, Foreground, Background, AssociatedFont, LowAnsiChars,
    HighAnsiChars, DoubleByteChars,
    // paragraphs
    Pard, AlignLeft, AlignCenter, AlignRight, AlignJustify, LeftIndent, RightIndent, FirstIndent,
    SpaceBefore, SpaceAfter, LineSpacing, LineMultiple, InTable, TableLevel, ListOverride, ListLevel,
    PageBreakBefore, RightToLeftParagraph, LeftToRightParagraph,
    // breaks and tables
    Par, Page, Line, Tab, Cell, Row, NestedCell, NestedRow, RowDefaults, CellEdge, RowGap,
    CellMergeFirst, CellMergeContinue, CellVerticalMergeFirst, CellVerticalMergeContinue,
    // special characters
    EmDash, EnDash, LeftQuote, RightQuote, LeftDoubleQuote, RightDoubleQuote, Bullet, EmSpace,
    EnSpace, QuarterEmSpace, ZeroWidthJoiner, ZeroWidthNonJoiner, LeftToRightMark, RightToLeftMark,
    // lists
    List, ListLevelDefinition, ListId, LevelNumberFormat, LevelText, LevelStartAt, ListOverrideEntry,
    OldListBullet, OldListBody, OldListLevel, OldListDecimal, OldListUpperLetter, OldListLowerLetter,
    OldListUpperRoman, OldListLowerRoman, OldListStart, OldListTextAfter, OldListTextBefore,
};

RtfWord LookUpRtfWord(QByteArrayView word);
