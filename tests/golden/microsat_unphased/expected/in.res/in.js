
USETEXTLINKS = 1
STARTALLOPEN = 0
WRAPTEXT = 1
PRESERVESTATE = 0
HIGHLIGHT = 1
ICONPATH = 'file:///<directory>/'    //change if the gif's folder is a subfolder, for example: 'images/'

foldersTree = gFld("<i>TOVENIA RESULTS (in.tvp)</i>", "in.xml")
insDoc(foldersTree, gLnk("R", "Tovenia log file", "Tovenia_log.txt"))
aux1 = insFld(foldersTree, gFld("Run of <time>", "in.xml#<id>"))
insDoc(aux1, gLnk("R", "Settings", "in.xml#<id>_run_information"))
aux1 = insFld(foldersTree, gFld("Groups", "in.xml#<id>_gr_analyses"))
insDoc(aux1, gLnk("R", "Group1", "in.xml#<id>group0"))
insDoc(aux1, gLnk("R", "Group2", "in.xml#<id>group1"))
aux1 = insFld(foldersTree, gFld("Within-groups summary", "in.xml#<id>_gr_summary"))
insDoc(aux1, gLnk("R", "Basic indices", "in.xml#<id>_gr_sum_Basic"))
insDoc(aux1, gLnk("R", "Heterozygosity", "in.xml#<id>_gr_sum_het"))
insDoc(aux1, gLnk("R", "Theta(H)", "in.xml#<id>_gr_sum_thetaH"))
insDoc(aux1, gLnk("R", "Theta(H)", "in.xml#<id>_gr_sum_thetaH_smm"))
insDoc(aux1, gLnk("R", "No. of alleles", "in.xml#<id>_gr_sum_numAll"))
insDoc(aux1, gLnk("R", "Allelic range", "in.xml#<id>_gr_sum_allRange"))
insDoc(aux1, gLnk("R", "Garza-Williamson index", "in.xml#<id>_gr_sum_GW"))
insDoc(aux1, gLnk("R", "Garza-Williamson modified index", "in.xml#<id>_gr_sum_GWN"))
aux1 = insFld(foldersTree, gFld("Samples", "in.xml#<id>_samp_analyses"))
insDoc(aux1, gLnk("R", "North lake", "in.xml#<id>samp0"))
insDoc(aux1, gLnk("R", "North bay", "in.xml#<id>samp1"))
insDoc(aux1, gLnk("R", "South hill", "in.xml#<id>samp2"))
insDoc(aux1, gLnk("R", "South delta", "in.xml#<id>samp3"))
aux1 = insFld(foldersTree, gFld("Within-samples summary", "in.xml#<id>_samp_summary"))
insDoc(aux1, gLnk("R", "Basic indices", "in.xml#<id>_samp_sum_Basic"))
insDoc(aux1, gLnk("R", "Heterozygosity", "in.xml#<id>_samp_sum_het"))
insDoc(aux1, gLnk("R", "Theta(H)", "in.xml#<id>_samp_sum_thetaH"))
insDoc(aux1, gLnk("R", "Theta(H)", "in.xml#<id>_samp_sum_thetaH_smm"))
insDoc(aux1, gLnk("R", "No. of alleles", "in.xml#<id>_samp_sum_numAll"))
insDoc(aux1, gLnk("R", "Allelic range", "in.xml#<id>_samp_sum_allRange"))
insDoc(aux1, gLnk("R", "Garza-Williamson index", "in.xml#<id>_samp_sum_GW"))
insDoc(aux1, gLnk("R", "Garza-Williamson modified index", "in.xml#<id>_samp_sum_GWN"))
