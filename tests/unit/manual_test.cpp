#include "base/manual.h"

#include <gtest/gtest.h>

TEST(Manual, UrlOfTheShippedPageKeepsItsAnchor) {
  EXPECT_EQ(ManualUrl("C:\\Program Files\\Quernal\\", "DOCUMENTATION"),
            "file:///C:/Program%20Files/Quernal/html/manual.htm#DOCUMENTATION");
  // Characters a URL gives a meaning must not cut the path short.
  EXPECT_EQ(ManualUrl("D:\\Tools #2\\100%\\", ""), "file:///D:/Tools%20%232/100%25/html/manual.htm");
  EXPECT_EQ(ManualUrl("C:\\Caf\xE9\\", "EVENTS"), "file:///C:/Caf%E9/html/manual.htm#EVENTS");
}
