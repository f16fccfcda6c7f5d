Setting options: what is told, what is asked, and what is written.

  $ . "$TESTDIR/setup.sh"
  $ cd vxi
  $ cp mainframe.img before.img
  $ velk set AddressSpace=1 --board 8 --dry-run
  Working copy of board 8, class VxiDevice (.):
  Option        Asked            Stored           Was
  AddressSpace  1 (A16 and A32)  1 (A16 and A32)  0 (A16 and A24)
  What moves with it:
  Option  Was           Is              Valid now
  Memory  4096 (4 KiB)  65536 (64 KiB)  65536 (64 KiB), 131072 (128 KiB),
                                        262144 (256 KiB), 524288 (512 KiB), ..,
                                        2147483648 (2 GiB)
  Board 8: not written. 2 registers would change.
  $ velk set AddressSpace=1 --board 8 </dev/null
  velk: cannot ask whether to write: this is no terminal; say --yes to write, or --dry-run to look.
    Not written.
  [2]
  $ velk set 'AddressSpace=a16 and a32' Memory=0x20000 --board 8 --yes --backup before.cfg
  Working copy of board 8, class VxiDevice (.):
  Option        Asked             Stored            Was
  AddressSpace  1 (A16 and A32)   1 (A16 and A32)   0 (A16 and A24)
  Memory        131072 (128 KiB)  131072 (128 KiB)  4096 (4 KiB)
  2 registers change.
  What was there is saved to before.cfg.
  Board 8: 2 registers, written and read back.
  $ velk get AddressSpace Memory --board 8
  1
  131072
  $ cmp mainframe.img before.img | wc -l
  1
  $ velk load before.cfg --board 8 --yes --strict
  Save file before.cfg, class VxiDevice (.), in place of board 8:
  Option        On the board      In the file      Valid now
  AddressSpace  1 (A16 and A32)   0 (A16 and A24)  as before
  Memory        131072 (128 KiB)  4096 (4 KiB)     256 (256 bytes),
                                                   512 (512 bytes), 1024 (1 KiB),
                                                   2048 (2 KiB), ..,
                                                   8388608 (8 MiB)
  2 registers change.
  Board 8: 2 registers, written and read back.
  $ same mainframe.img before.img
  the same bytes
  $ velk set AddressSpace=0 --board 8 --yes
  Working copy of board 8, class VxiDevice (.):
  Option        Asked            Stored           Was
  AddressSpace  0 (A16 and A24)  0 (A16 and A24)  0 (A16 and A24)
  Board 8: not written, since nothing changes.

All of them or none.

  $ velk set --board 8 --yes --key Averages=5
  velk: cannot set Averages=5 on board 8: Internal error (-99); give a value that the key can hold.
    Valid: 1, 4, 16, 64.
    Not written.
  [3]
  $ velk set Averages=4 AddressSpace=1 Lable=x --board 8 --yes
  velk: cannot find the option 'Lable': Unknown option (-9); did you mean Label?
    Not written.
  [3]
  $ velk set Averages=4 'Label=more than sixteen characters' --board 8 --yes --backup kept.cfg 2>&1 | grep -A1 velk:
  velk: cannot set Averages=4 Label=more than sixteen characters on board 8: Incorrect hardware configuration (-104), and it is not written: it was read again, and holds what it held; take a value or a file that fits this board.
    What was there is saved to kept.cfg.
  $ same mainframe.img before.img
  the same bytes

A value that moves, and why.

  $ cd ../board
  $ export VELK_DEFINITIONS=.
  $ velk set Speed=20 --board 5 --yes
  velk: set Speed=20 on board 5: 20 MHz is not valid now and would become 32 MHz (sleepy).
    Valid: 16 MHz (slow), 32 MHz (sleepy), 64 MHz, 128 MHz (fast).
    A list moves a value up to the next larger one, though 16 is nearer.
  Working copy of board 5, class Board (.):
  Option  Asked   Stored           Was
  Speed   20 MHz  32 MHz (sleepy)  0 MHz
  1 register changes.
  Board 5: 1 register, written and read back.
  $ velk set Speed=20 --board 5 --yes --strict
  velk: set Speed=20 on board 5: 20 MHz is not valid now and would become 32 MHz (sleepy).
    Valid: 16 MHz (slow), 32 MHz (sleepy), 64 MHz, 128 MHz (fast).
    A list moves a value up to the next larger one, though 16 is nearer.
    --strict lets nothing be moved: give a value that stays, or leave --strict out.
    Not written.
  [1]
  $ velk set Speed=17 --board 5 --dry-run
  velk: set Speed=17 on board 5: 17 MHz is not valid now and would become 32 MHz (sleepy).
    Valid: 16 MHz (slow), 32 MHz (sleepy), 64 MHz, 128 MHz (fast).
    A list moves a value up to the next larger one, though 16 is nearer.
  Working copy of board 5, class Board (.):
  Option  Asked   Stored           Was
  Speed   17 MHz  32 MHz (sleepy)  32 MHz (sleepy)
  Board 5: not written, since nothing changes.
  $ velk set Rate=200 --board 5 --yes
  velk: set Rate=200 on board 5: 200 is not valid now and would become 100.
    Valid: 0 to 100 in steps of 32.
    100 ends the range off its steps: it is stored for what lies above, stays
    until it is set again, and then becomes 96.
  Working copy of board 5, class Board (.):
  Option  Asked  Stored  Was
  Rate    200    100     0
  1 register changes.
  Board 5: 1 register, written and read back.
  $ velk set Rate=100 --board 5 --dry-run
  velk: set Rate=100 on board 5: 100 is not valid now and would become 96.
    Valid: 0 to 100 in steps of 32.
    100 ends the range off its steps: it is stored for what lies above, stays
    until it is set again, and then becomes 96.
  Working copy of board 5, class Board (.):
  Option  Asked  Stored  Was
  Rate    100    96      100
  Board 5: not written. 1 register would change.
  $ velk set Flag=2 --board 5 --dry-run
  velk: set Flag=2 on board 5: 2 is valid now, but its keys cannot hold it, and would become 0.
    Valid: 0 to 2.
  Working copy of board 5, class Board (.):
  Option  Asked  Stored  Was
  Flag    2      0       0
  Board 5: not written, since nothing changes.
  $ velk set Mode=2 --board 5 --yes
  Working copy of board 5, class Board (.):
  Option  Asked  Stored  Was
  Mode    2      2       0
  What moves with it:
  Option  Was     Is               Valid now
  Speed   as now  32 MHz (sleepy)  none
  1 register changes.
  Board 5: 1 register, written and read back.
  $ velk set Speed=64 --board 5 --yes
  velk: set Speed=64 on board 5: no value is valid now, so it would stay 32 MHz (sleepy).
    Valid: none.
  Working copy of board 5, class Board (.):
  Option  Asked   Stored           Was
  Speed   64 MHz  32 MHz (sleepy)  32 MHz (sleepy)
  Board 5: not written, since nothing changes.
  $ velk set Mode=1 Speed=128 Mode=0 --board 5 --dry-run
  velk: set Speed=128 on board 5: 128 MHz (fast) is not valid now and would become 16 MHz (slow).
    Valid: 16 MHz (slow).
  velk: set Mode=1 on board 5: 1 was taken, and a later assignment makes it 0.
  Working copy of board 5, class Board (.):
  Option  Asked           Stored         Was
  Mode    1               0              2
  Speed   128 MHz (fast)  16 MHz (slow)  32 MHz (sleepy)
  Mode    0               0              2
  Board 5: not written. 2 registers would change.
  $ velk set Speed=128 Mode=1 --board 5 --dry-run
  velk: set Speed=128 on board 5: no value is valid now, so it would stay 32 MHz (sleepy).
    Valid: none.
  velk: set Speed=128 on board 5: 32 MHz (sleepy) was taken, and a later assignment makes it 16 MHz (slow).
  Working copy of board 5, class Board (.):
  Option  Asked           Stored         Was
  Speed   128 MHz (fast)  16 MHz (slow)  32 MHz (sleepy)
  Mode    1               1              2
  Board 5: not written. 2 registers would change.
  $ velk set Mode=3 --board 5 --yes
  velk: cannot set Mode=3 on board 5: Several lists are valid, and none of them can be chosen (-16); give values under which no rule of an option offers several lists.
    Valid: 0 to 15.
    Not written.
  [3]
  $ velk set 'Lines=(1, 2)' --board 5 --yes
  Working copy of board 5, class Board (.):
  Option  Asked   Stored  Was
  Lines   (1, 2)  (1, 2)  ()
  1 register changes.
  Board 5: 1 register, written and read back.
  $ velk set Mode=4 Title=other --board 5 --dry-run --strict
  velk: set Title=other on board 5: "other" is not valid now and would become "fixed".
    Valid: "fixed".
    --strict lets nothing be moved: give a value that stays, or leave --strict out.
    Not written.
  [1]
  $ velk set Mode=0x40 --board 5 --dry-run --key
  velk: set Mode=0x40 on board 5: the key cannot hold it, and would become 0.
  Working copy of board 5, class Board (.):
  Key   Asked  Stored  Was
  Mode  64     0       2
  What moves with it:
  Option  Was     Is               Valid now
  Mode    2       0                as before
  Speed   as now  32 MHz (sleepy)  16 MHz (slow), 32 MHz (sleepy), 64 MHz,
                                   128 MHz (fast)
  Board 5: not written. 1 register would change.

Values in their notations.

  $ cp zero.img board.img
  $ velk set 'Lines=(0x1, 0b10, 03)' 'Title=a b=c' Mode=+5 --board 0 --yes
  Working copy of board 0, class Board (.):
  Option  Asked      Stored     Was
  Lines   (1, 2, 3)  (1, 2, 3)  ()
  Title   "a b=c"    "a b=c"    ""
  Mode    5 (7)      5 (7)      0
  What moves with it:
  Option  Was    Is             Valid now
  Speed   0 MHz  16 MHz (slow)  as before
  4 registers change.
  Board 0: 4 registers, written and read back.
  $ velk get Lines Title Mode --board 0
  (1, 2, 3)
  a b=c
  5
  $ velk set 'Lines=:1:2:5' Title= --board 0 --yes
  Working copy of board 0, class Board (.):
  Option  Asked      Stored     Was
  Lines   (1, 3, 5)  (1, 3, 5)  (1, 2, 3)
  Title   ""         ""         "a b=c"
  2 registers change.
  Board 0: 2 registers, written and read back.
  $ velk get Lines Title --board 0
  (1, 3, 5)
  
  $ velk set 'Lines=^1:4' --board 0 --yes && velk get Lines --board 0
  Working copy of board 0, class Board (.):
  Option  Asked      Stored     Was
  Lines   (1, 2, 4)  (1, 2, 4)  (1, 3, 5)
  1 register changes.
  Board 0: 1 register, written and read back.
  (1, 2, 4)
  $ velk set 'Lines=' --board 0 --yes && velk get Lines --board 0
  Working copy of board 0, class Board (.):
  Option  Asked  Stored  Was
  Lines   ()     ()      (1, 2, 4)
  1 register changes.
  Board 0: 1 register, written and read back.
  ()
  $ velk set 'Lines=1, x' --board 0 --yes
  velk: cannot read the value for Lines: 'x' is no 32-bit number; give a list, such as (1, 2, :4:2:10).
    Not written.
  [2]
  $ velk set 'Lines=::' --board 0 --yes
  velk: cannot read the list for Lines: Invalid format for a number (-10); give one such as (1, 2, :4:2:10).
    Not written.
  [2]
  $ velk set 'Lines=:0:1:0xFFFFFFF' --board 0 --yes
  velk: cannot read the list for Lines: Out of memory (-1); give a shorter one.
    Not written.
  [2]
  $ velk set Mode=09 --board 0 --yes
  velk: cannot read the value for Mode: '09' is no 32-bit number and none of its words; give a number, or a word such as 7, tab\there or caf\xE9.
    Not written.
  [2]
  $ velk set Mode=99999999999 --board 0 --yes
  velk: cannot read the value for Mode: '99999999999' is no 32-bit number and none of its words; give a number, or a word such as 7, tab\there or caf\xE9.
    Not written.
  [2]
  $ velk set Mode= --board 0 --yes
  velk: cannot read the value for Mode: '' is no 32-bit number and none of its words; give a number, or a word such as 7, tab\there or caf\xE9.
    Not written.
  [2]
  $ velk set Mode --board 0 --yes
  velk: cannot read 'Mode'; give NAME=VALUE.
    Not written.
  [2]

Words: whole ones, beginnings, and those that may be several. Digits are a number, always.

  $ velk set Speed=FAST --board 0 --dry-run | grep Speed
  Speed   128 MHz (fast)  128 MHz (fast)  16 MHz (slow)
  $ velk set Speed=sl --board 0 --dry-run
  velk: cannot read the value for Speed: 'sl' may be slow (16) or sleepy (32); give more of the word, or the number.
    Not written.
  [2]
  $ velk set Speed=slo --board 0 --dry-run | grep Speed
  Speed   16 MHz (slow)  16 MHz (slow)  16 MHz (slow)
  $ velk set Speed=fsat --board 0 --dry-run
  velk: cannot read the value for Speed: 'fsat' is no 32-bit number and none of its words; did you mean fast?
    Not written.
  [2]
  $ velk set Mode=7 --board 0 --dry-run | grep Mode
  Mode    7 (caf\xE9)  7 (caf\xE9)  5 (7)

From a file, and from standard input.

  $ printf '# a comment\n\n Mode = 4 \nSpeed=fast\r\n' >lines
  $ velk set --from lines Rate=64 --board 0 --yes
  Working copy of board 0, class Board (.):
  Option  Asked           Stored          Was
  Mode    4               4               5 (7)
  Speed   128 MHz (fast)  128 MHz (fast)  16 MHz (slow)
  Rate    64              64              0
  What moves with it:
  Option  Was  Is       Valid now
  Title   ""   "fixed"  "fixed"
  4 registers change.
  Board 0: 4 registers, written and read back.
  $ echo Mode=0 | velk set --from - --board 0 --yes | tail -1
  Working copy of board 0, class Board (.):
  Option  Asked  Stored  Was
  Mode    0      0       4
  What moves with it:
  Option  Was     Is       Valid now
  Title   as now  "fixed"  any text
  1 register changes.
  Board 0: 1 register, written and read back.
  $ printf 'Mode=4\nSpeed\n' | velk set --from - --board 0 --yes
  velk: cannot read 'Speed' in line 2 of standard input; give NAME=VALUE.
    Not written.
  [2]
  $ printf 'Mode=4\n\nSpeed=foo\n' | velk set --from - --board 0 --yes
  velk: cannot read the value for Speed: 'foo' is no 32-bit number and none of its words (line 3 of standard input); give a number, or a word such as slow, sleepy or fast.
    Not written.
  [2]
  $ velk set --from /dev/null --board 0 --yes
  Working copy of board 0, class Board (.):
  Nothing is asked for.
  Board 0: not written, since nothing changes.
  $ velk set --from . --board 0 --yes
  velk: cannot read .: Is a directory; give a file of NAME=VALUE lines.
    Not written.
  [2]
  $ velk set --from nowhere --board 0 --yes
  velk: cannot open nowhere: No such file or directory; give a file of NAME=VALUE lines.
    Not written.
  [2]

Keys, and what hangs on them.

  $ velk set --board 0 --dry-run --key Mode=2
  Working copy of board 0, class Board (.):
  Key   Asked  Stored  Was
  Mode  2      2       0
  What moves with it:
  Option  Was     Is              Valid now
  Mode    0       2               as before
  Speed   as now  128 MHz (fast)  none
  Board 0: not written. 1 register would change.
  $ velk set Clock=2 --board 0 --yes
  velk: cannot find the option 'Clock': Unknown option (-9); look at `velk list` for the names.
    Not written.
  [3]
  $ velk set --keys Speed=300 --board 0 --dry-run --strict
  velk: set Speed=300 on board 0: the key cannot hold it, and would become 44 MHz.
    --strict lets nothing be moved: give a value that stays, or leave --strict out.
    Not written.
  [1]

Into a save file.

  $ velk save a.cfg --board 0
  Board 0, class Board (.): 5 registers, saved to a.cfg.
  $ velk set Mode=9 --file a.cfg --yes
  Working copy of save file a.cfg, class Board (.):
  Option  Asked  Stored  Was
  Mode    9      9       0
  1 register changes.
  Save file a.cfg: 1 register, written and read back.
  $ velk set Mode=8 --file a.cfg --yes --backup ./a.cfg
  velk: cannot set Mode=8 on save file a.cfg: the backup would be the same file, ./a.cfg; give another one to --backup.
    Not written.
  [2]
  $ velk load a.cfg --board 0 --yes --backup a.cfg
  velk: cannot load a.cfg into board 0: the backup would be the same file, a.cfg; give another one to --backup.
    Not written.
  [2]
  $ velk set Mode=9 --file a.cfg --yes --backup b.cfg 2>&1 | tail -2; ls b.cfg
  What was there is saved to b.cfg.
  Save file a.cfg: not written, since nothing changes.
  b.cfg
  $ velk get Mode --file a.cfg
  9
  $ velk set Mode=9 --file a.cfg --yes
  Working copy of save file a.cfg, class Board (.):
  Option  Asked  Stored  Was
  Mode    9      9       9
  Save file a.cfg: not written, since nothing changes.

What cannot be read hinders nothing.

  $ printf '[Odd]\nKeys = Rate\nGetMethod = Mode:1?Flag\nValidValuesType = Range\ndefault = 0:1:9\n' >>options.ini
  $ printf '\200' | dd of=board.img bs=1 seek=34 conv=notrunc status=none
  $ velk set Odd=5 Mode=1 Odd=6 --board 1 --yes --strict
  Working copy of board 1, class Board (.):
  Option  Asked  Stored                Was
  Odd     5      Internal error (-99)  0
  Mode    1      1                     0
  Odd     6      Internal error (-99)  0
  What moves with it:
  Option  Was    Is             Valid now
  Rate    0      6              as before
  Speed   0 MHz  16 MHz (slow)  16 MHz (slow)
  Flag cannot be read: Internal error (-99).
  Odd cannot be read: Internal error (-99).
  3 registers change.
  Board 1: 3 registers, written and read back.
