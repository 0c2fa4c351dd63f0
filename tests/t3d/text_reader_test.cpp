#include "t3d/level.h"
#include "t3d/text_reader.h"

#include <gtest/gtest.h>

namespace quarvel {
namespace {

/// A block over the whole of a text that outlives it.
TextBlock Whole(std::string_view text) { return {text, 1, static_cast<TextCursor>(text.size())}; }

TEST(TextReader, ReadsVectorsByTheirLabels) {
  const TextBlock block = Whole("x Location=(X=-12345.678901,Y=1.5,Z=2)\r\n"
                                "\tRotation=(Yaw=16384)\n DrawScale3D=(X=2.0)\r\n"
                                "OldLocation=(X=1)\r\n"
                                "KeyPos(1)=(X=1)  Tail=(R=300,G=-1,B=7)\r\n");
  EXPECT_EQ(GetVectorOr0(block, " Location="), (Vector3{-12345.678, 1.5, 2})) << "ten characters of each component";
  EXPECT_EQ(GetRotator(block, " Rotation="), (Rotator3{0, 16384, 0})) << "a tab for the blank";
  EXPECT_EQ(GetVectorOr1(block, "DrawScale3D="), (Vector3{2, 1, 1}));
  EXPECT_EQ(GetVectorOr0(block, " NoLocation="), Vector3());
  EXPECT_EQ(GetVectorOr0(block, "KeyPos(10)="), Vector3());
  ColorRGB color{9, 9, 9};
  EXPECT_FALSE(GetColor(block, "Tail=", color));
  EXPECT_EQ(color, (ColorRGB{255, 0, 7}));
}

TEST(TextReader, FindsKeysThatAreNotIndented) {
  for (const char* text :
       {"Class=Brush\nLocation=(Z=3)\nTag=Lift\n", "Class=Brush\r\nLocation=(Z=3)\r\nTag=Lift\r\n"}) {
    EXPECT_EQ(GetVectorOr0(Whole(text), " Location="), (Vector3{0, 0, 3}));
    EXPECT_EQ(ReadActorHeader(Whole(text)).Tag, "Lift");
  }
}

TEST(TextReader, LooksAtTheFirstOccurrenceOfAKeyOnly) {
  const TextBlock block = Whole("Class=Engine.Mover Name=\"My Door\"\r\n AttachTag=X\r\n Tag=Lift Event=\"Go  up\"\r\n"
                                " Region=(Zone=SkyZoneInfo'L.S0',iLeaf=1)\r\n");
  EXPECT_FALSE(IsKeyAt(block, "Tag="));
  EXPECT_TRUE(IsKeyAt(block, " Tag="));
  EXPECT_EQ(GetValueWord(block, "Tag="), "");
  const ActorHeader header = ReadActorHeader(block);
  EXPECT_EQ(header.Class, "Mover");
  EXPECT_EQ(header.Name, "My Door");
  EXPECT_EQ(header.Tag, "Lift");
  EXPECT_EQ(header.Event, "Go  up");
  EXPECT_TRUE(header.IsSkyZone);
}

TEST(TextReader, CutsWordsWhereTheyEnd) {
  const TextBlock block = Whole("Name=My Door\tTabbed=yes\tPoint=(X=1,Y=2)\r\nText=\"a 'b' c\" Last=end");
  EXPECT_EQ(GetStringValue(block, "Name="), "My");
  EXPECT_EQ(GetValueWord(block, "Tabbed="), "yes\t") << "a tab is kept";
  EXPECT_EQ(GetValueWord(block, "Point="), "(X=1,Y=2)");
  EXPECT_EQ(GetQuotedValue(block, "Text="), "a 'b' c");
  EXPECT_EQ(GetQuotedValue(block, "Name="), "");
  EXPECT_EQ(GetValueWord(block, "Last="), "end");
  EXPECT_EQ(GetValueWord(Whole("A=x"), "A="), "") << "a word that is the text's last character";
  const std::string text = "Tag= \t\r\n Event=Own\n Group=\n End Actor\n";
  const TextBlock empty(text, 1, static_cast<TextCursor>(text.find("End Actor") + 1));
  EXPECT_EQ(GetStringValue(empty, "Tag=") + GetStringValue(empty, "Group="), "") << "nothing behind the equals sign";
}

TEST(TextReader, ReadsTypedValues) {
  const TextBlock block = Whole(" a=False\n b=false\n c=\"False\"\n d=12.7x\n e=-90000\n f=\"Two words\"\n g=abc\n");
  bool flag = true;
  EXPECT_TRUE(GetKeyValue(block, "a=", flag) && !flag);
  EXPECT_TRUE(GetKeyValue(block, "b=", flag) && flag) << "only the exact word is false";
  EXPECT_TRUE(GetKeyValue(block, "c=", flag) && !flag);
  double number = 5;
  EXPECT_TRUE(GetKeyValue(block, "d=", number) && number == 12.7);
  EXPECT_TRUE(GetKeyValue(block, "g=", number) && number == 0);
  std::int16_t small = 5;
  EXPECT_TRUE(GetKeyValue(block, "d=", small) && small == 13);
  EXPECT_TRUE(GetKeyValue(block, "e=", small) && small == -32768);
  std::string text = "kept";
  EXPECT_FALSE(GetKeyValue(block, "h=", text));
  EXPECT_EQ(text, "kept");
  EXPECT_TRUE(GetKeyValue(block, "f=", text) && text == "Two words");
  EXPECT_EQ(GetKeyOrZero(block, "h="), 0);
}

TEST(TextReader, KeysOfNestedBlocksAndOfNeighboursAreNotRead) {
  const std::string text =
      "Class=Brush\n Begin Object Class=Karma Name=Inner\n  Friction=3\n End Object\n Begin Brush\n"
      "  Origin=1\n End Brush\n Event=Own\n Begin Thing\n Mass=2\n End Actor\n Class=Light\n Tag=Next\n";
  const TextBlock block(text, 1, static_cast<TextCursor>(text.find("End Actor") + 1));
  const ActorHeader header = ReadActorHeader(block);
  EXPECT_EQ(header.Class, "Brush");
  EXPECT_EQ(header.Name, "");
  EXPECT_EQ(header.Event, "Own");
  EXPECT_EQ(header.Tag, "");
  EXPECT_EQ(block.Find("Friction="), 0);
  EXPECT_EQ(block.Find("Origin="), 0);
  EXPECT_EQ(GetKeyOrZero(block, "Mass="), 2) << "other blocks are part of the actor";
  // An opening quote without an end takes no more than the block.
  EXPECT_EQ(GetQuotedValue(TextBlock("A=\"bcd\nEnd Actor \"", 1, 8), "A="), "bcd\n");
}

TEST(TextReader, ReadsNumberTriplesToTheEndOfTheirLine) {
  NumberCheck check;
  const std::string text =
      "Origin   +00001.000000,-00002.500000,+000-0.000000\rVertex 7,8\nNormal 1000000.5,1.0,-2.0\r\n"
      "TextureU 1000000,-1000000,-2e9\nTextureV 1,2,3";
  const auto end = static_cast<TextCursor>(text.size() + 1);
  TextCursor cursor = 1;
  EXPECT_EQ(ReadNumberTriple(text, "Origin", cursor, end, check), (Vector3{1, -2.5, 0}));
  EXPECT_EQ(text[static_cast<std::size_t>(cursor) - 1], 'V') << "behind the line break";
  EXPECT_EQ(ReadNumberTriple(text, "Vertex", cursor, end, check), (Vector3{7, 8, 0})) << "not on to the next line";
  EXPECT_EQ(check.Places, 0);
  check.Actor = "Brush1";
  EXPECT_EQ(ReadNumberTriple(text, "Normal", cursor, end, check), (Vector3{1, 1, -2}));
  EXPECT_EQ(ReadNumberTriple(text, "TextureU", cursor, end, check), (Vector3{1000000, -1000000, -1}));
  EXPECT_EQ(check.Places, 2);
  EXPECT_EQ(check.FirstActor, "Brush1");
  const TextCursor before = cursor;
  EXPECT_EQ(ReadNumberTriple(text, "TextureV", cursor, before - 1, check), Vector3()) << "beyond the bound";
  EXPECT_EQ(cursor, before);
  EXPECT_EQ(ReadNumberTriple(text, "TextureV", cursor, end, check), (Vector3{1, 2, 3}));
}

TEST(TextReader, CutsLinesWordsAndTokens) {
  const std::string_view text = "one two\r\n\r\nthree,four";
  TextCursor cursor = 1;
  EXPECT_EQ(NextWord(text, cursor), "one ");
  EXPECT_EQ(cursor, 4);
  EXPECT_EQ(NextWord(text, cursor), "two\r");
  cursor = 1;
  EXPECT_EQ(ReadLineAt(text, cursor), "one two");
  EXPECT_EQ(NextToken(text, ",", cursor), "three");
  EXPECT_EQ(NextWord(text, cursor), "four");
  EXPECT_EQ(NextToken(text, ",", cursor), "");
  EXPECT_EQ(cursor, 0);
  EXPECT_EQ(GetBetween("f(a)g(b)", "(", ")", 2), "b");
  EXPECT_EQ(GetBetween("f(a)g(b)", "(", ")", 3), "");
  EXPECT_EQ(GetBetween("f(a)", "(", ")", 0), "");
  EXPECT_EQ(GetBetweenFrom("f(a)g(b)", 4, "(", ")"), "b");
  std::string target = "kept";
  EXPECT_FALSE(TryGetBetween("f(a", "(", ")", target));
  EXPECT_EQ(target, "kept");
}

TEST(T3DLevel, FindsTheWholeActorsOfAClassOrFamily) {
  const T3DLevel level("Begin Map\nBegin ActorList\nBegin Actor Class=LightHouse Name=A\nEnd Actor\n"
                       "Begin Actor Class=SunLight Name=C\n End ActorX\nEnd Actor\n"
                       "Begin Actor Class=Engine.Light Name=B\n Title=\"Begin\"\nEnd Actor\n"
                       "Begin Actor\nEnd Actor\nBegin Actor Class=LiftMover Name=D\nEnd Actor\n"
                       "Begin Actor Class=Light Name=Cut\n"
                       "Begin Actor Class=Mover Name=E\nEnd Actor\nBegin Actor Class=Li");
  const auto names = [&](const std::vector<const ActorBlock*>& actors) {
    std::string found;
    for (const ActorBlock* actor : actors)
      found += ReadActorHeader(TextBlock(level.Text, actor->From, actor->To)).Name + " ";
    return found;
  };
  EXPECT_EQ(names(level.ActorsOf(ActorFamily::Light)), "A B C ") << "in the order of the classes, then of the file";
  EXPECT_EQ(names(level.ActorsOf(ActorFamily::Mover)), "E D ");
  EXPECT_EQ(names(level.ActorsOf(ActorFamily::Brush)), "");
  EXPECT_EQ(names(level.ActorsOf("Light")), "B ") << "an actor without end is passed over";
  EXPECT_EQ(names(level.ActorsOf("Sunlight")), "C ");
  EXPECT_EQ(names(level.ActorsOf("light")), "");
  EXPECT_EQ(level.ClassesOf(ActorFamily::Mover), (std::vector<std::string_view>{"Mover", "LiftMover"}));
}

} // namespace
} // namespace quarvel
