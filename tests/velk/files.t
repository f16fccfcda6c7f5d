Save files: their way to boards and back, and those that do not fit.

  $ . "$TESTDIR/setup.sh"
  $ cd board
  $ velk set Mode=1 Title=one --board 1 --yes 2>/dev/null
  Board 1: 3 registers, written and read back.
  $ velk save one.cfg --board 1
  Board 1, class Board (.): 5 registers, saved to one.cfg.
  $ velk list --file one.cfg
  Save file one.cfg, class Board (.):
  Option  Label  Value          Valid now
  Mode           1              0 to 15
  Rate           0              0 to 100 in steps of 32
  Speed   Clock  16 MHz (slow)  16 MHz (slow)
  Flag           0              0 to 2
  Title          "one"          any text
  Lines          ()             any list
  $ velk diff 1 one.cfg
  Board 1, class Board (.) and save file one.cfg:
  No option differs.
  $ velk diff 0 one.cfg --registers
  Board 0, class Board (.) and save file one.cfg:
  Option  board 0  save file one.cfg
  Mode    0        1
  Speed   0 MHz    16 MHz (slow)
  Title   ""       "one"
  Register    Name   board 0     save file one.cfg
  0x00000010  Clock  0x00000000  0x00000010
  0x00000012         0x00000000  0x00000001
  0x0B000010         ""          "one"
  [1]
  $ velk diff 0 1 --keys
  Board 0, class Board (.) and board 1:
  Option  board 0  board 1
  Mode    0        1
  Speed   0 MHz    16 MHz (slow)
  Title   ""       "one"
  Key    board 0  board 1
  Speed  0 MHz    16 MHz (slow)
  Mode   0        1
  Title  ""       "one"
  3 registers differ in all; --registers shows them.
  [1]
  $ velk load one.cfg --board 0 --dry-run
  Save file one.cfg, class Board (.), in place of board 0:
  Option  On the board  In the file    Valid now
  Mode    0             1              as before
  Speed   0 MHz         16 MHz (slow)  16 MHz (slow)
  Title   ""            "one"          as before
  Board 0: not written. 3 registers would change.
  $ velk load one.cfg --board 0 --yes
  Save file one.cfg, class Board (.), in place of board 0:
  Option  On the board  In the file    Valid now
  Mode    0             1              as before
  Speed   0 MHz         16 MHz (slow)  16 MHz (slow)
  Title   ""            "one"          as before
  3 registers change.
  Board 0: 3 registers, written and read back.
  $ velk diff 0 1
  Board 0, class Board (.) and board 1:
  No option differs.

The key that ties a file to its boards.

  $ velk save other.cfg --board 1 --key Lab
  Board 1, class Board (.): 5 registers, saved to other.cfg.
  $ velk list --file other.cfg
  velk: cannot read save file other.cfg: Save file incompatible with hardware (-5); say --key 'Lab' if a file of that key is meant.
  [3]
  $ velk get Mode --file other.cfg --key Lab
  1
  $ velk get Mode --file other.cfg --key Lab --keys
  1

What the engine does not look at.

  $ sed 's/Class=Board/Class=Bench/' one.cfg >class.cfg
  $ velk get Mode --file class.cfg
  velk: cannot use save file class.cfg: it was saved for the class 'Bench', not 'Board'; take it all the same with --force.
  [3]
  $ velk get Mode --file class.cfg --force
  velk: save file class.cfg is used all the same: it was saved for the class 'Bench', not 'Board'.
  1
  $ sed 's/Version=1.0/Version=2.0/' one.cfg >version.cfg
  $ velk load version.cfg --board 0 --yes
  velk: cannot use save file version.cfg: it is of version '2.0', not '1.0'; take it all the same with --force.
    Not written.
  [3]
  $ sed 's/^0x00000011=/0x00000099=/' one.cfg >registers.cfg
  $ velk get Mode --file registers.cfg
  velk: save file registers.cfg does not fit the class: it lacks registers that keys need, 0x00000011, and has registers that no key uses, 0x00000099.
  1
  $ velk get Mode --file registers.cfg --strict
  velk: cannot use save file registers.cfg: it lacks registers that keys need, 0x00000011, and has registers that no key uses, 0x00000099; take it without --strict.
  [3]
  $ velk list --file registers.cfg 2>/dev/null | grep Rate
  Rate           Virtual register not found (-3)  0 to 100 in steps of 32
  $ velk load registers.cfg --board 0 --yes
  velk: save file registers.cfg does not fit the class: it lacks registers that keys need, 0x00000011, and has registers that no key uses, 0x00000099.
  Save file registers.cfg, class Board (.), in place of board 0:
  Option  On the board  In the file                      Valid now
  Rate    0             Virtual register not found (-3)  as before
  Rate cannot be read: Virtual register not found (-3).
  1 register changes.
  velk: cannot load registers.cfg into board 0: Incorrect hardware configuration (-104), and it is not written: it was read again, and holds what it held; take a value or a file that fits this board.
  [4]
  $ cp one.cfg kept.cfg
  $ velk load one.cfg --board 2 --yes >/dev/null 2>&1 && same one.cfg kept.cfg
  the same bytes
  $ echo '[Data' >broken.cfg
  $ velk get Mode --file broken.cfg
  velk: cannot read save file broken.cfg: Invalid file format (-4); mend its line 1, or give it a file that `velk save` has written.
  [3]
  $ velk get Mode --file nowhere.cfg
  velk: cannot read save file nowhere.cfg: Invalid file format (-4); look whether it is there and may be read: No such file or directory.
  [3]
  $ velk save /nowhere/one.cfg --board 1
  velk: cannot save board 1 to /nowhere/one.cfg: Error writing file (-6); look whether its directory is there, and at its rights and its room.
  [3]
