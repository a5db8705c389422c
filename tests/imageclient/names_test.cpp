// Names of servers and images, and what folders' lists say: tables of good, odd and hostile input.
#include <gmock/gmock.h>

#include "imageclient/folderlisting.h"
#include "imageclient/httpsource.h"
#include "imageclient/serveraddress.h"
#include "imageclient/transfer.h"

namespace tarn::client {
namespace {

TEST(Names, ServersAreTakenByTheirLooks) {
  const struct {
    std::string host, port;
    bool fine;
    bool https;
  } cases[] = {
      {"ortho.example", "8080", true, false},
      {"10.0.0.7", "", true, false},
      {"a_b-c.example", "443", true, true},
      {"", "80", false, false},
      {"host", "0", false, false},
      {"host", "65536", false, false},
      {"host", "80a", false, false},
      {"host", "-1", false, false},
      {"host", "+80", false, false},
      {"host", "99999999999", false, false},
      {"ho st", "80", false, false},
      {"user@host", "80", false, false},
      {"host/evil", "80", false, false},
      {"host?x", "80", false, false},
      {"host#x", "80", false, false},
      {"..", "80", false, false},
      {"a..b", "80", false, false},
      {"-a", "80", false, false},
      {"ho\nst", "80", false, false},
      {"%31", "80", false, false},
      {"[::1]", "80", false, false},
      {std::string(300, 'a'), "80", false, false},
  };
  for (const auto& c : cases) {
    const auto place = parsePlace(c.host, c.port);
    ASSERT_EQ(place.isOk(), c.fine) << c.host << ':' << c.port;
    if (c.fine) {
      EXPECT_EQ(place.value().https, c.https) << c.host;
    }
  }
}

TEST(Names, PathsStayBelowTheServersRoot) {
  for (const std::string bad : {"", "/etc/passwd", "a//b.tif", "../a.tif", "a/../../b.tif", "a/..",
                                "./a.tif", "a\\..\\b.tif", "a\nb.tif", "a/"})
    EXPECT_FALSE(checkImagePath(bad)) << bad;
  const struct {
    std::string path, encoded;
  } cases[] = {
      {"a.tif", "/a.tif"},
      {"100% 正射/b c.tif", "/100%25%20%E6%AD%A3%E5%B0%84/b%20c.tif"},
      {"a?b#c&d=e;f@g.tif", "/a%3Fb%23c%26d%3De%3Bf%40g.tif"},
      {"%2e%2e/x.tif", "/%252e%252e/x.tif"},
  };
  for (const auto& c : cases) {
    EXPECT_TRUE(checkImagePath(c.path)) << c.path;
    EXPECT_EQ(encodedPath(c.path), c.encoded);
    EXPECT_EQ(decodedText(c.encoded.substr(1)), c.path);
  }
  EXPECT_EQ(decodedText("a%zz%4"), "a%zz%4");
  const ServerPlace place{"ortho.example", 8080, false, {}};
  EXPECT_EQ(specificationOf(place, "城区/a b/x.tif"), "x.tif%$#@ortho.example:8080/城区:a b:x.tif");
  EXPECT_FALSE(canBeSpecified("a:b.tif"));
  EXPECT_FALSE(canBeSpecified("a%$#@b.tif"));
}

TEST(Names, LoginsGoToTheirServerOnly) {
  const std::string logins = "ann:pa@ss@ortho.example bob:x@10.0.0.7:8080";
  const auto login = [&](const std::string& host, int port) {
    return loginFor(logins, {host, port, false, {}});
  };
  EXPECT_EQ(login("ortho.example", 80), "ann:pa@ss");
  EXPECT_EQ(login("ORTHO.example", 443), "ann:pa@ss");
  EXPECT_EQ(login("ortho.example", 8080), "");
  EXPECT_EQ(login("10.0.0.7", 8080), "bob:x");
  EXPECT_EQ(login("10.0.0.7", 80), "");
  EXPECT_EQ(login("evil.example", 80), "");
}

TEST(Names, NeighbouringRangesBecomeOne) {
  using raster::ByteRange;
  const auto merged = mergeRanges({{5000, 1000}, {0, 100}, {108, 100}, {50, 20}, {9000, 10}});
  ASSERT_EQ(merged.size(), 3U);
  EXPECT_EQ(merged[0].size, 208U);
  EXPECT_EQ(merged[1].offset, 5000U);
  // What is long already is left to several connections.
  EXPECT_EQ(mergeRanges({{0, 900000}, {900000, 900000}}).size(), 2U);
}

MATCHER_P3(Item, path, bytes, time, "") {
  return arg.path == path && arg.bytes == bytes && arg.time == time;
}

TEST(Lists, IndexPagesOfNginxAndApache) {
  const std::string nginx =
      "<html><head><title>Index of /</title></head><body><h1>Index of /</h1><hr><pre>"
      "<a href=\"../\">../</a>\n"
      "<a href=\"%E5%9F%8E%E5%8C%BA%202026/\">城区 2026/</a>       21-Nov-2026 13:00    -\n"
      "<a href=\"100%25%20a%26b.tif\">100% a&amp;b.tif</a>         20-Nov-2026 09:30   123456\n"
      "<a href=\"a%3Ab.tif\">a:b.tif</a>                           20-Nov-2026 09:30   1\n"
      "<a href=\"notes.txt\">notes.txt</a>                         20-Nov-2026 09:30   12\n"
      "<a href=\"big.TIFF\">big.TIFF</a>                           20-Nov-2026 09:31   12M\n"
      "</pre></body></html>";
  EXPECT_THAT(parseIndexPage(nginx),
              testing::ElementsAre(Item("城区 2026", -1, "21-Nov-2026 13:00"),
                                   Item("100% a&b.tif", 123456, "20-Nov-2026 09:30"),
                                   Item("big.TIFF", 12 << 20, "20-Nov-2026 09:31")));
  const std::string apache =
      "<table><tr><th><a href=\"?C=N;O=D\">Name</a></th></tr>"
      "<tr><td><img src=\"/i.gif\"></td><td><A HREF='x.tif'>x.tif</A></td>"
      "<td align=\"right\">2026-11-20 09:30  </td><td align=\"right\">1.5K</td></tr>"
      "<tr><td><a href=\"/elsewhere/y.tif\">y</a><a href=\"http://evil/z.tif\">z</a>"
      "<a href=\"javascript:x.tif\">j</a><a href=\"..%2f..%2fq.tif\">q</a></td></tr>"
      "<tr><td><a href=\"./sub/\">sub/</a></td><td>2026-11-20 09:30</td><td>-</td></tr></table>";
  EXPECT_THAT(parseIndexPage(apache),
              testing::ElementsAre(Item("sub", -1, "2026-11-20 09:30"),
                                   Item("x.tif", 1536, "2026-11-20 09:30")));
  for (const std::string odd : {"", "<", "<a", "<a href=", "<a href=\"", "<a href=\"x.tif", "<a >",
                                "<a href=x.tif>", "no html at all"})
    EXPECT_LE(parseIndexPage(odd).size(), 1U) << odd;
}

TEST(Lists, Catalogues) {
  const std::string json = R"({"type":"FeatureCollection","links":[
      {"rel":"self","href":"./catalog.json"},{"rel":"child","href":"./%E5%8C%97/catalog.json"},
      {"rel":"child","href":"../up/catalog.json"}],"features":[
      {"id":"a","properties":{"datetime":"2026-05-01T00:00:00Z","proj:bbox":[1,2,3,4]},
       "assets":{"image":{"href":"./a%20b.tif","file:size":1234}}},
      {"id":"b","properties":{"updated":"2026-06-01"},"assets":{
       "meta":{"href":"b.xml"},"image":{"href":"sub/b.tif","proj:bbox":[3,2,1,4]}}},
      {"id":"c","assets":{"image":{"href":"http://elsewhere/c.tif"}}},
      {"id":"d","assets":{"image":{"href":"../../d.tif"}}},{"id":"e"},7,
      {"id":"f","properties":{"proj:geometry":{"type":"Polygon","coordinates":
       [[[5,1],[9,2],[8,6],[4,5],[5,1]]]}},"assets":{"image":{"href":"t.tif"}}}]})";
  const auto items = parseCatalogue(json);
  ASSERT_TRUE(items) << items.message();
  ASSERT_THAT(items.value(), testing::ElementsAre(
                                 Item("北", -1, ""), Item("a b.tif", 1234, "2026-05-01T00:00:00Z"),
                                 Item("sub/b.tif", -1, "2026-06-01"), Item("t.tif", -1, "")));
  ASSERT_TRUE(items.value()[1].footprint);
  EXPECT_EQ(items.value()[1].footprint->right, 3);
  EXPECT_FALSE(items.value()[2].footprint) << "left and right of it are swapped";
  ASSERT_TRUE(items.value()[3].footprint) << "the box of a polygon";
  EXPECT_EQ(items.value()[3].footprint->left, 4);
  EXPECT_EQ(items.value()[3].footprint->top, 6);
  for (const std::string bad : {"", "{}", "[]", "{\"features\":1}", "{\"features\":[", "\xff\xfe"})
    EXPECT_FALSE(parseCatalogue(bad)) << bad;
}

}  // namespace
}  // namespace tarn::client
