requires maya "2016";
currentUnit -l centimeter -a degree -t film;
fileInfo "a" "b";
createNode transform -n "a";
	rename -uid "894E9940-0000-2351-5933-E66000000255";
	setAttr ".t" -type "double3" 1 2 3 ;
createNode mesh -n "aShape" -p "a";
	setAttr -k off ".v";
	setAttr ".uvst[0].uvsn" -type "string" "map1";
	setAttr -s 4 ".uvst[0].uvsp[0:3]" -type "float2" 0 0 1 0 1 1 0 1;
	setAttr ".cuvs" -type "string" "map1";
	setAttr ".clst[0].clsn" -type "string" "c";
	setAttr -s 2 ".clst[0].clsp[0:1]"  1 0 0 1 0 1 0 1;
	setAttr -s 4 ".vt[0:3]"  0 0 0 1 0 0 1 1 0 0 1 0;
	setAttr -s 5 ".ed[0:4]"  0 1 0 1 2 1 2 3 1 3 0 0 0 2 1;
	setAttr -s 2 -ch 6 ".fc[0:1]" -type "polyFaces"
		f 3 0 1 -5
		mu 0 3 0 1 2
		mc 0 3 0 1 -1
		f 3 4 2 3
		mu 0 3 0 2 3;
	setAttr ".pt[0]" -type "float3" 0 0 1;
// End of rows.ma
