// A table column's value as a number or a truth.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "db/ColumnValue.h"

using Corvane::ColumnBoolean;
using Corvane::ColumnDouble;
using Corvane::ColumnInteger;

namespace {

QVariant Words(const char* text) { return QString::fromUtf8(text); }

TEST(DbColumnDouble, ReadsNumbersAndTheirTexts) {
  EXPECT_EQ(ColumnDouble(9.5), 9.5);
  EXPECT_EQ(ColumnDouble(7), 7.0);
  EXPECT_EQ(ColumnDouble(Words("12.50")), 12.5);
  EXPECT_EQ(ColumnDouble(Words("abc")), 0.0);
  EXPECT_EQ(ColumnDouble(QVariant()), 0.0);
}

TEST(DbColumnDouble, WhatIsNotFiniteIsZero) {
  for (const char* text : {"inf", "-inf", "nan", "1e999", "-1e999"}) EXPECT_EQ(ColumnDouble(Words(text)), 0.0) << text;
  EXPECT_EQ(ColumnDouble(std::numeric_limits<double>::infinity()), 0.0);
  EXPECT_EQ(ColumnDouble(std::nan("")), 0.0);
}

TEST(DbColumnInteger, AWholeNumberNarrows) {
  EXPECT_EQ(ColumnInteger(42), 42);
  EXPECT_EQ(ColumnInteger(QVariant(qlonglong(-7))), -7);
  EXPECT_EQ(ColumnInteger(QVariant(qlonglong(4294967297))), 1);
  EXPECT_EQ(ColumnInteger(QVariant(qlonglong(20240615001))), -1234221479);
  EXPECT_EQ(ColumnInteger(QVariant(qulonglong(4294967295U))), -1);
}

TEST(DbColumnInteger, AWholeNumberAsATextNarrows) {
  EXPECT_EQ(ColumnInteger(Words("42")), 42);
  EXPECT_EQ(ColumnInteger(Words(" -7 ")), -7);
  EXPECT_EQ(ColumnInteger(Words("4294967297")), 1);
  EXPECT_EQ(ColumnInteger(QByteArray("20240615001")), -1234221479);
}

TEST(DbColumnInteger, ATextThatIsNoWholeNumberIsZero) {
  for (const char* text : {"", "-", "abc", "12abc", "12.7", "1e3"}) EXPECT_EQ(ColumnInteger(Words(text)), 0) << text;
  EXPECT_EQ(ColumnInteger(QVariant()), 0);
  EXPECT_EQ(ColumnInteger(QVariant(QVariant::Int)), 0);
}

TEST(DbColumnInteger, ANumberWithDecimalsIsCut) {
  EXPECT_EQ(ColumnInteger(12.7), 12);
  EXPECT_EQ(ColumnInteger(-12.7), -12);
  EXPECT_EQ(ColumnInteger(3e9), std::numeric_limits<std::int32_t>::min());
}

TEST(DbColumnBoolean, WordsForNoAreFalse) {
  for (const char* text : {"", " ", "0", "0.00", "N", "n", "F", "f", "NO", "No", "FALSE", "false", "n  "}) {
    EXPECT_FALSE(ColumnBoolean(Words(text))) << text;
  }
  for (const char* text : {"1", "Y", "y", "T", "YES", "TRUE", "true", "2", "x"}) {
    EXPECT_TRUE(ColumnBoolean(Words(text))) << text;
  }
}

TEST(DbColumnBoolean, ABitArrivesAsAByte) {
  EXPECT_FALSE(ColumnBoolean(QByteArray(1, '\0')));
  EXPECT_TRUE(ColumnBoolean(QByteArray(1, '\1')));
  EXPECT_FALSE(ColumnBoolean(QString(QChar(0))));
  EXPECT_TRUE(ColumnBoolean(QString(QChar(1))));
  EXPECT_TRUE(ColumnBoolean(QByteArray("1")));
  EXPECT_FALSE(ColumnBoolean(QByteArray("0")));
}

TEST(DbColumnBoolean, NumbersAndNull) {
  EXPECT_FALSE(ColumnBoolean(0));
  EXPECT_TRUE(ColumnBoolean(1));
  EXPECT_FALSE(ColumnBoolean(0.0));
  EXPECT_TRUE(ColumnBoolean(0.5));
  EXPECT_FALSE(ColumnBoolean(QVariant()));
}

}  // namespace
