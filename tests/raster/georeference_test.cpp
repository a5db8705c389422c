#include <gdal_priv.h>
#include <gtest/gtest.h>

#include "components/raster/georeference.h"
#include "tests/raster/warpedbygdal.h"

namespace tarn::raster {
namespace {

struct Kind {
  const char* file;
  const char* world;
  FileForm form;
  bool hasInner;
};

const Kind kKinds[] = {{"a.tif", "a.tfw", {"GTiff", {}}, true},
                       {"a.img", "a.igw", {"HFA", {}}, true},
                       {"a.jpg", "a.jgw", {"JPEG", {}}, false}};

std::string auxText(double x) {
  return "<PAMDataset><GeoTransform>" + std::to_string(x) +
         ", 0.5, 0, 800, 0, -0.5</GeoTransform></PAMDataset>";
}

TEST(Georeference, AuxBeforeWorldFileBeforeInner) {
  for (const Kind& kind : kKinds) {
    SCOPED_TRACE(kind.file);
    const Scratch scratch;
    const std::string path = scratch / kind.file;
    FileForm form = kind.form;
    form.georeferenced = kind.hasInner;
    writePicture(path, texture(40, 30, 3), form);
    const auto place = [&] {
      const auto image = openImage(path);
      return image ? image->geoTransform() : GeoTransform{};
    };
    if (kind.hasInner) {
      EXPECT_EQ(place().x0, 500000);
      EXPECT_EQ(place().y0, 3400000);
    } else {
      EXPECT_EQ(place().x0, 0);
      EXPECT_EQ(place().y0, 30);
      EXPECT_EQ(place().a, 1);
      EXPECT_EQ(openImage(path)->notes().size(), 1U);
    }
    // The centre of the first pixel, so the corner is half a pixel up and left.
    writeText(scratch / kind.world, "0.5\n0\n0\n-0.5\n600000.25\n3500000.75\n");
    EXPECT_EQ(place().x0, 600000);
    EXPECT_EQ(place().y0, 3500001);
    EXPECT_EQ(openImage(path)->notes().size(), kind.hasInner ? 1U : 0U)
        << "differs from the inner one";
    writeText(path + ".aux.xml", auxText(700));
    EXPECT_EQ(place().x0, 700);
    EXPECT_EQ(place().y0, 800);
    ASSERT_EQ(openImage(path)->notes().size(), 1U);
    const std::string note = openImage(path)->notes()[0];
    EXPECT_NE(note.find(".aux.xml"), std::string::npos) << note;
    EXPECT_NE(note.find(kind.world), std::string::npos) << note;
    // By how much: the corner from (600000, 3500001) to (700, 800), in pixels of half a unit.
    EXPECT_NE(note.find("7100300.9 pixels (3550150.4 units"), std::string::npos) << note;
  }
}

std::string auxPoints(double x) {
  std::string text = "<PAMDataset><GCPList Projection=\"\">";
  for (const auto& [column, row] : {std::pair{0, 0}, {40, 0}, {0, 30}, {40, 30}}) {
    text += "<GCP Id=\"\" Pixel=\"" + std::to_string(column) + "\" Line=\"" + std::to_string(row) +
            "\" X=\"" + std::to_string(x + column * 0.5) + "\" Y=\"" +
            std::to_string(900 - row * 0.5) + "\"/>";
  }
  return text + "</GCPList></PAMDataset>";
}

/// What counts when several say where the image is, control points among them.
TEST(Georeference, ControlPointsTakeTheirPlaceInTheOrder) {
  for (const Kind& kind : kKinds) {
    SCOPED_TRACE(kind.file);
    const Scratch scratch;
    const std::string path = scratch / kind.file;
    FileForm form = kind.form;
    form.georeferenced = kind.hasInner;
    writePicture(path, texture(40, 30, 3), form);
    writeText(path + ".aux.xml", auxPoints(700));
    const auto byAux = openImage(path);
    EXPECT_NEAR(byAux->geoTransform().x0, 700, 1e-6);
    EXPECT_NEAR(byAux->geoTransform().y0, 900, 1e-6);
    EXPECT_NE(byAux->notes().back().find("4 control points"), std::string::npos);
    EXPECT_EQ(byAux->notes().size(), kind.hasInner ? 2U : 1U) << "differs from the inner one";
    // A single point says nothing; what stands behind it counts, with a note.
    writeText(path + ".aux.xml",
              "<PAMDataset><GCPList><GCP Pixel=\"0\" Line=\"0\" X=\"5\" Y=\"5\"/></GCPList>"
              "</PAMDataset>");
    const auto byInner = openImage(path);
    EXPECT_EQ(byInner->geoTransform().x0, kind.hasInner ? 500000 : 0);
    EXPECT_NE(byInner->notes().front().find("control point"), std::string::npos);
    writeText(scratch / "a.WLD", "0.5\n0\n0\n-0.5\n600000.25\n3500000.75\n");
    EXPECT_EQ(openImage(path)->geoTransform().x0, 600000) << "a world file of the general name";
  }
  // Points inside of a TIFF, whose world file is a transform and wins.
  const Scratch scratch;
  const std::string path = scratch / "a.tif";
  writePicture(path, texture(40, 30, 3), {"GTiff", {}, false});
  placeByPoints(path, {{0, 0, 10, 50}, {40, 0, 30, 50}, {0, 30, 10, 35}, {40, 30, 30, 35}});
  EXPECT_NEAR(openImage(path)->geoTransform().x0, 10, 1e-6);
  writeText(scratch / "a.tfw", "0.5\n0\n0\n-0.5\n600000.25\n3500000.75\n");
  EXPECT_EQ(openImage(path)->geoTransform().x0, 600000);
  EXPECT_EQ(openImage(path)->notes().size(), 1U) << "they differ";
}

TEST(Georeference, PixelsThatArePointsLieAroundThem) {
  const Scratch scratch;
  const std::string path = scratch / "a.tif";
  writePicture(path, texture(40, 30, 3), {"GTiff", {}, false});
  auto* dataset = GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE);
  dataset->SetMetadataItem("AREA_OR_POINT", "Point");
  double t[6] = {500000, 0.5, 0, 3400000, 0, -0.5};
  dataset->SetGeoTransform(t);
  GDALClose(dataset);
  const auto image = openImage(path);
  EXPECT_EQ(image->geoTransform().x0, 500000);
  EXPECT_EQ(image->geoTransform().y0, 3400000);
}

TEST(Georeference, BrokenWorldFileIsIgnoredWithANote) {
  const Scratch scratch;
  writePicture(scratch / "a.tif", texture(40, 30, 3));
  for (const char* text : {"", "0.5\n0\n0\n-0.5\n1\n", "a\nb\nc\nd\ne\nf\n", "0\n0\n0\n0\n5\n5\n",
                           "nan\n0\n0\n-1\n0\n0\n", "1e300\n0\n0\n-1\n0\n0\n"}) {
    writeText(scratch / "a.tfw", text);
    const auto image = openImage(scratch / "a.tif");
    ASSERT_TRUE(image) << text;
    EXPECT_EQ(image->geoTransform().x0, 500000) << text;
    EXPECT_EQ(image->notes().size(), 1U) << text;
  }
}

TEST(Georeference, WorldFileNamesAndTexts) {
  const auto names = worldFileNames("old map.tiff");
  for (const char* wanted : {"old map.tfw", "old map.tiffw", "old map.wld", "old map.TFW"}) {
    EXPECT_NE(std::find(names.begin(), names.end(), wanted), names.end()) << wanted;
  }
  const auto t = parseWorldFile("  0.1\r\n0.0\r\n0\r\n-1e-1\r\n40500123.456\r\n3512345.678\r\n");
  ASSERT_TRUE(t);
  EXPECT_DOUBLE_EQ(t->x0, 40500123.406);
  EXPECT_DOUBLE_EQ(t->y0, 3512345.728);
  // Commas between numbers, and commas as decimal points.
  EXPECT_EQ(parseWorldFile("1, 0, 0, -1, 100, 200")->x0, 99.5);
  EXPECT_EQ(parseWorldFile("0,5\n0,0\n0\n-0,5\n100,25\n200,5\n")->x0, 100);
}

TEST(Georeference, CoordinateSystem) {
  const Scratch scratch;
  writePicture(scratch / "a.tif", texture(40, 30, 3));
  EXPECT_EQ(openImage(scratch / "a.tif")->coordinateSystem(), -1);
  writeText(scratch / "a.tif.aux.xml",
            "<PAMDataset><SRS>PROJCS[\"x\",GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS "
            "84\",6378137,"
            "298.257223563]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],"
            "PROJECTION[\"Transverse_Mercator\"],UNIT[\"metre\",1],AUTHORITY[\"EPSG\",\"4547\"]]</"
            "SRS></PAMDataset>");
  EXPECT_EQ(openImage(scratch / "a.tif")->coordinateSystem(), 4547);
}

}  // namespace
}  // namespace tarn::raster
