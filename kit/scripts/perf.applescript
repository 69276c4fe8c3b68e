-- The quick way to repaint: an existing highlight is pointed at other cells, which takes about half
-- the time of deleting and making one and keeps Excel's undo history.

-- {conditions moved, rules of the user's on the destination}. Nothing is moved onto cells that have
-- rules of the user's: there the highlight needs a priority, which only making it anew gives.
on qx_cf_move(fromAddrs, toAddrs, bookName, sheetName)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set sh to my qx_cf_sheet(bookName, sheetName)
			set source1 to my qx_rangefromaddrs(fromAddrs, sh)
			set target1 to my qx_rangefromaddrs(toAddrs, sh)
			set theirs to my qx_cf_foreign(target1)
			set moved to 0
			if theirs is 0 then
				repeat with i from (count of format conditions of source1) to 1 by -1
					if my qx_cf_ours(source1, i) then
						modify applies to range (format condition i of source1) range (target1)
						set moved to moved + 1
					end if
				end repeat
			end if
			-- A highlight that did not arrive, without an error, must not count as moved.
			set arrived to 0
			if moved > 0 then
				repeat with i from 1 to (count of format conditions of target1)
					if my qx_cf_ours(target1, i) then set arrived to arrived + 1
				end repeat
			end if
			if arrived < moved then set moved to 0
			return {moved, theirs}
		end timeout
	end tell
end qx_cf_move
